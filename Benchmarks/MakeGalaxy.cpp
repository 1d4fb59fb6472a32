// Writes the model of a large warehouse, or requests about it, to try the tool on.

#include "Benchmarks/Galaxy.h"
#include "Toolkit/Model/ModelFile.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

int main(int count, char** arguments)
{
    const std::string_view what = count > 1 ? arguments[1] : "";
    const auto number = static_cast<std::size_t>(count > 2 ? std::atoll(arguments[2]) : 0);
    if (what == "model" && number > 0) {
        std::cout << qe::tool::WriteModelText(MakeGalaxy({.tables = number}));
    } else if (what == "requests" && number > 0) {
        for (const std::string& request : MakeGalaxyRequests({}, number))
            std::cout << request << '\n';
    } else {
        std::cerr << "usage: MakeGalaxy model TABLES | MakeGalaxy requests COUNT\n";
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
