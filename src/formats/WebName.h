// Whether a web page works under a name. The name is the page's variable, its font family and a part of its
// addresses, and stands there as it is.
#pragma once

#include "foundation/MString.h"

#include <string_view>

// Why the page that is exported as `path` draws nothing, as what follows the name in a sentence: "is a word of
// the script language". Empty for a name under which it works.
std::string_view WebNameTrouble(const MString& path);
