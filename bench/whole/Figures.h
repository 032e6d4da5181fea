#pragma once

#include "bench/whole/Fleet.h"

/// Each measures one group of rows and prints them.
namespace bench {

void reportCallTimes(Fleet& fleet);
void reportKernelWork(Fleet& fleet);
void reportParameterMemory(const Fleet& fleet);
void reportGrowth(const Fleet& fleet);
/// Each starts another bus and daemon.
void reportLogMemory();
void reportUnreadMemory();

}  // namespace bench
