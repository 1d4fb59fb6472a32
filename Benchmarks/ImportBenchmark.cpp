// What it costs to import a large model.

#include "Toolkit/Import/OpenModel.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

/// Writes the DDL of tables of eleven columns, each but the first with keys to two before it.
void WriteDefinitions(const std::filesystem::path& path, std::int64_t tables)
{
    std::ofstream file(path);
    for (std::int64_t i = 0; i < tables; ++i) {
        file << "CREATE TABLE t" << i << " (\n  id INTEGER PRIMARY KEY";
        for (int column = 0; column < 8; ++column)
            file << ",\n  column_" << column << " VARCHAR(40)";
        for (std::int64_t key = 0; key < 2 && i > 0; ++key)
            file << ",\n  parent_" << key << " INTEGER REFERENCES t" << (i * 7 + key * 13) % i;
        file << ");\n";
    }
}

void ImportDefinitions(benchmark::State& state)
{
    const auto path = std::filesystem::temp_directory_path() /
                      ("ModelBenchmark-" + std::to_string(getpid()) + ".sql");
    WriteDefinitions(path, state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(qe::tool::ImportSql({path}, {}));
    std::filesystem::remove(path);
}
BENCHMARK(ImportDefinitions)->Arg(1000)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace
