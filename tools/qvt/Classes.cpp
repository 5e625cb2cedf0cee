#include "Classes.h"

#include <algorithm>

#include "Options.h"

namespace qvt {

SharedPtr<ISchema> classNamed(const std::string& classText, ISchemaLocator* locator,
                              const std::string& file) {
    for (std::size_t start = 0; start <= classText.size();) {
        const std::size_t end = std::min(classText.find(';', start), classText.size());
        const std::string name = classText.substr(start, end - start);
        if (!locator->locate(wide(name)))
            throw Failure(kMissing,
                          file + ": error: no class " + name + ", nor in the documents of --schemas");
        start = end + 1;
    }
    return locator->locate(wide(classText));
}

}  // namespace qvt
