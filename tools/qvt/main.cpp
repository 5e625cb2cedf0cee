// qvt: design data on the command line.
#include <csignal>
#include <exception>
#include <new>

#include "CommandLine.h"
#include "Messages.h"

namespace {

using qvt::Messages;

int fault(const std::string& words) {
    Messages::fail("qvt: error: " + words);
    return qvt::kFault;
}

int run(int argc, const char* const* argv) {
    try {
        const qvt::Command command = qvt::commandOf(argc, argv);
        return command.verb ? command.verb->run(command.options) : command.status;
    } catch (const qvt::OutputClosed&) {
        return qvt::kDone;
    } catch (const qvt::Failure& failure) {
        const std::string words = failure.what();
        Messages::fail(words.rfind("error: ", 0) == 0 ? "qvt: " + words : words);
        return failure.status();
    } catch (const std::bad_alloc&) {
        return fault("out of memory");
    } catch (const std::exception& exception) {
        return fault(exception.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a write tells it too
    return run(argc, argv);
}
