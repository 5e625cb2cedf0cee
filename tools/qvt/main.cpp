// qvt: design data on the command line.
#include <csignal>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "CommandLine.h"
#include "FileStores.h"
#include "Messages.h"

namespace {

using qvt::Messages;

int fault(const std::string& words) {
    Messages::fail("qvt: error: " + words);
    return qvt::kFault;
}

int ended(const qvt::Failure& failure) {
    const std::string words = failure.what();
    Messages::fail(words.rfind("error: ", 0) == 0 ? "qvt: " + words : words);
    return failure.status();
}

#ifdef QVT_FILE
// The store names itself by the path that it was opened by.
int ended(const qvt::StoreError& error, const qvt::Options& options) {
    std::vector<std::string> paths{options.store, options.target, options.to};
    paths.insert(paths.end(), options.schemas.begin(), options.schemas.end());
    for (const std::string& path : paths)
        if (!path.empty() && std::string_view(error.what()).substr(0, path.size() + 2) == path + ": ")
            return ended(qvt::failureOf(error, path, path));
    return ended(qvt::failureOf(error, "", "qvt"));
}
#endif

int run(const qvt::Command& command) {
    try {
        return command.verb ? command.verb->run(command.options) : command.status;
    } catch (const qvt::OutputClosed&) {
        return qvt::kDone;
    } catch (const qvt::Failure& failure) {
        return ended(failure);
#ifdef QVT_FILE
    } catch (const qvt::StoreError& error) {
        return ended(error, command.options);
#endif
    } catch (const std::bad_alloc&) {
        return fault("out of memory");
    } catch (const std::exception& exception) {
        return fault(exception.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a write tells it too
    return run(qvt::commandOf(argc, argv));
}
