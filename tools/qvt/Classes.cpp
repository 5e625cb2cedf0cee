#include "Classes.h"

#include <algorithm>

#include "Options.h"

namespace qvt {

std::vector<std::string> namesIn(const std::string& classText) {
    std::vector<std::string> names;
    for (std::size_t start = 0; start <= classText.size();) {
        const std::size_t end = std::min(classText.find(';', start), classText.size());
        names.push_back(classText.substr(start, end - start));
        start = end + 1;
    }
    return names;
}

SharedPtr<ISchema> classNamed(const std::string& classText, ISchemaLocator* locator,
                              const std::string& file) {
    for (const std::string& name : namesIn(classText))
        if (!locator->locate(wide(name)))
            throw Failure(kMissing, file + ": error: no class " + name + ", nor in the stores of --schemas");
    return locator->locate(wide(classText));
}

}  // namespace qvt
