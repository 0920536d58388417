#include "foundation/Product.h"

const MString ProductName = "Lettrino";
const MString ProductVersion = LETTRINO_VERSION;
const MString MakerName = "Northbank Softworks";
const MString MakerSite = "https://northbank-softworks.example";
const MString ProductPage = "https://northbank-softworks.example/lettrino";
