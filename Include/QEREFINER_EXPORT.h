#ifndef INCLUDE_QEREFINER_EXPORT_H
#define INCLUDE_QEREFINER_EXPORT_H

/// Marks what the refiner library offers to other modules. Everything else in it is hidden.
#define QEREFINER_EXPORT __attribute__((visibility("default")))

#endif
