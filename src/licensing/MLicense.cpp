#include "licensing/MLicense.h"

MLicense* License = nullptr;
