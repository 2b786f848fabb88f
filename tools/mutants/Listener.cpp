// Linked to each test program of the copy: writes to the file MUTANTS_LOG of the environment, line
// by line, what test starts, how it ended after how many ms, and the faults it reached. A test that
// takes longer than MUTANTS_LIMIT, s, ends the program by its alarm.

#include "Mutants.h"

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <iterator>
#include <unistd.h>

namespace {

class Listener : public testing::EmptyTestEventListener {
public:
    explicit Listener(const char* path)
        : log_(std::fopen(path, "a")) {
        const char* limit = std::getenv("MUTANTS_LIMIT");
        limit_ = limit == nullptr ? 0 : unsigned(std::atoi(limit));
    }

private:
    void OnTestStart(const testing::TestInfo& test) override {
        Tell("between");
        std::fprintf(log_, "start\t%s.%s\n", test.test_suite_name(), test.name());
        std::fflush(log_);
        alarm(limit_);
    }
    void OnTestEnd(const testing::TestInfo& test) override {
        alarm(0);
        Tell("reached");
        std::fprintf(log_, "end\t%s.%s\t%s\t%d\n", test.test_suite_name(), test.name(),
                     test.result()->Failed() ? "failed" : "passed",
                     int(test.result()->elapsed_time()));
        std::fflush(log_);
    }
    void Tell(const char* word) {
        std::fputs(word, log_);
        for (int number = 0; number < mutants::MaxFaults; ++number) {
            if (mutants::Reached[number] != 0)
                std::fprintf(log_, "\t%d", number);
        }
        std::fputc('\n', log_);
        std::fill(std::begin(mutants::Reached), std::end(mutants::Reached), 0);
    }

    std::FILE* log_;
    unsigned limit_;
};

const bool Added = [] {
    const char* path = std::getenv("MUTANTS_LOG");
    if (path != nullptr)
        testing::UnitTest::GetInstance()->listeners().Append(new Listener(path));
    return true;
}();

} // namespace
