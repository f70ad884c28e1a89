#pragma once

#include <tools/kvtool/console/command.h>

namespace kvtool {

Command coverCommand();

}  // namespace kvtool
