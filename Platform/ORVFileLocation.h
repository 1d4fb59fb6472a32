#ifndef PLATFORM_ORVFILELOCATION_H
#define PLATFORM_ORVFILELOCATION_H

#include <string>

/// The place in the sources where an exception was raised.
struct ORVFileLocation
{
    std::string file;
    int line = 0;
};

#endif
