// The commands of the menu. None is ever disabled: one that needs a font does nothing when there is none.
#pragma once

#include "shell/Menu.h"

void RunCommand(CommandId command);
