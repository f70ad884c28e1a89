#pragma once

#include <tools/kvtool/console/command.h>

namespace kvtool {

Command metadataCommand();
Command saveCommand();
Command thumbnailCommand();

}  // namespace kvtool
