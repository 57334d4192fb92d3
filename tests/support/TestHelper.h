// The tests' second process (tests/helpers/TestHelper.cpp), found beside the
// test executable.
#pragma once

#include <chrono>
#include <string>
#include <thread>

#include "kticore/files/FileUtilities.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WideText.h"

namespace kt::test {

inline std::string Narrow(const WideString& wide) {
    return std::string(wide.begin(), wide.end());  // the tests' names are ASCII
}

inline int RunTestHelper(const std::string& what, const WideString& name,
                         const WideString& second = WideString()) {
    std::vector<std::string> arguments = {what, Narrow(name)};
    if (!second.empty())
        arguments.push_back(Narrow(second));
    ChildProcess helper(KT_TEST_HELPER, arguments);
    return helper.Started() ? helper.Wait() : -1;
}

// Another process that holds a non-exclusive lock on a file while it lives.
class LockInAnotherProcess {
public:
    explicit LockInAnotherProcess(const WideString& name)
        : marker(name + KTW(".held")), helper(KT_TEST_HELPER, {"hold", Narrow(name), "60000"}) {
        for (int i = 0; i < 2000 && !Fio_IsFileExist(marker.c_str()); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        held = Fio_IsFileExist(marker.c_str()) != 0;
    }
    ~LockInAnotherProcess() {
        helper.Kill();
        Fio_DeleteFile(marker.c_str());
    }
    bool held = false;

private:
    WideString marker;
    ChildProcess helper;
};

}  // namespace kt::test
