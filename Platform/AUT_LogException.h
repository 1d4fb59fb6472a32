#ifndef PLATFORM_AUT_LOGEXCEPTION_H
#define PLATFORM_AUT_LOGEXCEPTION_H

#include "QEENGINE_EXPORT.h"

class HBNException;

/// Writes an exception that is about to be raised to the log, with the place that raises it.
QEENGINE_EXPORT void AUT_LogException(const HBNException& exception, const char* sourcePath,
                                      int sourceLine);

#endif
