#include "foundation/Product.h"

const MString ProductName = "Lettrino";
const MString ProductVersion = "4.0.0.8";
const MString MakerName = "Northbank Softworks";
const MString ProductPage = "https://northbank-softworks.example/lettrino";
