#include "library/data_paths.h"

const DataPaths& DataPaths::Get() {
    static const DataPaths paths;
    return paths;
}
