#include "Toolkit/Import/SqliteImport.h"

#include "Toolkit/Import/SchemaModel.h"
#include "Toolkit/Import/SqliteDatabase.h"
#include "Toolkit/Text/InputError.h"

#include <system_error>

namespace qe::tool {

ToolModel ImportSqlite(const std::filesystem::path& path, const ImportOptions& options)
{
    std::error_code failure;
    if (std::filesystem::is_directory(path, failure))
        throw InputError({{path.string(), "this is a directory, not a database"}});
    try {
        const SqliteDatabase database = SqliteDatabase::OpenFile(path);
        return MakeModel(ReadSchema(database), path.stem().string(), options);
    } catch (const SqliteError& error) {
        throw InputError(
            {{path.string(), "cannot read the database: " + std::string(error.what())}});
    }
}

} // namespace qe::tool
