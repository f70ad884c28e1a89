#pragma once

#include <tools/kvtool/console/command.h>

namespace kvtool {

Command paletteCommand();
Command gradientCommand();

}  // namespace kvtool
