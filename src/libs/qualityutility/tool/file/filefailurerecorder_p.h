#pragma once

#include <qualityutility/tool/file/filefailures.h>

/// Tells the thread's FileFailures, if there is one.
void recordFileFailure(const FileFailure& failure);
