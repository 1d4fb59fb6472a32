#ifndef PLATFORM_QEENGINE_EXPORT_H
#define PLATFORM_QEENGINE_EXPORT_H

/// Marks what the engine library offers to other modules. Everything else in it is hidden.
#define QEENGINE_EXPORT __attribute__((visibility("default")))

#endif
