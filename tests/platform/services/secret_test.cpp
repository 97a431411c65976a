#include "platform/services/secret.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>

#include "platform/failure.h"

namespace {

using platform::Secret;

// The flags that the system keeps for the page of an address.
std::string pageFlags(const void* address) {
    std::ifstream maps("/proc/self/smaps");
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t first = 0;
        std::uintptr_t last = 0;
        if (std::sscanf(line.c_str(), "%lx-%lx ", &first, &last) == 2)
            inside = wanted >= first && wanted < last;
        else if (inside && line.starts_with("VmFlags:"))
            return line + " ";
    }
    return {};
}

TEST(Secret, EditsInItsOneBufferAndWipesWhatGoes) {
    Secret secret("harbour");
    const char* const memory = secret.view().data();
    secret.replace(3, 2, "B--O");
    EXPECT_EQ(secret.view(), "harB--Our");
    secret.replace(1, 8, "");
    EXPECT_EQ(secret.view(), "h");
    EXPECT_EQ(std::string(memory, 20), "h" + std::string(19, '\0'));
    EXPECT_THROW(secret.replace(2, 0, "x"), platform::Failure);
    EXPECT_THROW(secret.replace(0, 2, "x"), platform::Failure);
    EXPECT_THROW(secret.append(std::string(Secret::capacity, 'x')), platform::Failure);
    EXPECT_EQ(secret.view(), "h");
    secret.append(std::string(Secret::capacity - 1, 'x'));
    Secret other = std::move(secret);
    EXPECT_EQ(other.view().data(), memory);
    other.clear();
    EXPECT_EQ(std::string(memory, Secret::capacity), std::string(Secret::capacity, '\0'));
}

TEST(Secret, StaysOutOfCoreFilesSwapAndChildren) {
    {
        const Secret secret("harbour");
        Secret moved("x");
        moved = Secret("other");
        EXPECT_EQ(::prctl(PR_GET_DUMPABLE), 0);
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(*secret.view().data());
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(WEXITSTATUS(status), 0) << "the child's page holds zeros";
    }
    EXPECT_EQ(::prctl(PR_GET_DUMPABLE), 1);
    const Secret secret("harbour");
    ::prctl(PR_SET_DUMPABLE, 1);  // so that the flags can be read
    const std::string flags = pageFlags(secret.view().data());
    EXPECT_NE(flags.find(" dd "), std::string::npos) << flags;
    EXPECT_NE(flags.find(" wf "), std::string::npos) << flags;
}

}  // namespace
