// qvt: design data on the command line.
#include <csignal>
#include <exception>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include "CommandLine.h"
#include "FileStores.h"
#include "Messages.h"
#include "Output.h"

namespace {

using qvt::Messages;

int fault(const std::string& words) {
    Messages::fail("qvt: error: " + words);
    return qvt::kFault;
}

// What can be done about a damaged store: the words are those of its engine at times, and say nothing of it.
std::string hintFor(const qvt::Failure& failure, const qvt::Command& command) {
    if (failure.status() != qvt::kDamaged) return "";
    if (command.verb != &qvt::kRepair)
        return " (qvt check STORE lists what is damaged, qvt repair STORE NEW saves the rest)";
    return command.options.salvage ? "" : " (--salvage looks for records in every page)";
}

int ended(const qvt::Failure& failure, const qvt::Command& command) {
    const std::string words = failure.what() + hintFor(failure, command);
    Messages::fail(words.rfind("error: ", 0) == 0 ? "qvt: " + words : words);
    return failure.status();
}

int ended(const qvt::StoreError& error, const qvt::Command& command) {
    const qvt::Options& options = command.options;
    std::vector<std::string> paths{options.store, options.target, options.to};
    paths.insert(paths.end(), options.schemas.begin(), options.schemas.end());
    for (const std::string& path : paths)
        if (const auto failure = qvt::failureOf(error, path, path)) return ended(*failure, command);
    return ended(qvt::failureOf(error, options.store), command);
}

int run(int argc, const char* const* argv) {
    qvt::Command command;
    try {
        command = qvt::commandOf(argc, argv);
        if (!command.verb) return command.status;
        qvt::mustSpareInput(command.options);
        return command.verb->run(command.options);
    } catch (const qvt::OutputClosed&) {
        return qvt::kDone;
    } catch (const qvt::Failure& failure) {
        return ended(failure, command);
    } catch (const qvt::StoreError& error) {
        return ended(error, command);
    } catch (const std::system_error& error) {
        const bool isStuck = error.code() == std::errc::resource_deadlock_would_occur;
        return isStuck ? ended(qvt::Failure(qvt::kBusy, std::string("error: ") + error.what()), command)
                       : fault(error.what());
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
