// Replays the committed corpora of the option-file and SDPA fuzz targets
// through the same bodies the fuzzers run (their own expectations trap on
// failure); each file's name begins with the outcome the reader must report.
#include <map>
#include <set>

#include "opt/option_file_fuzz_body.hpp"
#include "support/files.hpp"
#include "opt/sdpa_fuzz_body.hpp"

namespace {

using kor::test::corpus;
using kor::test::outcome_of;

TEST(OptionFileCorpus, ReplaysWithTheOutcomesItsNamesState) {
    using S = kor::opt::FileReading::Status;
    const std::map<std::string, S> outcomes = {{"ok", S::ok}, {"no_begin", S::no_begin}, {"no_end", S::no_end},
                                               {"no_delimiter", S::no_delimiter}, {"setting_failed", S::setting_failed}};
    std::set<std::string> seen;
    for (const auto &[name, data] : corpus("data/opt/corpus/option_file")) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(outcomes.count(outcome_of(name)));
        const S got = kor::opt_fuzz::fuzz_option_file(reinterpret_cast<const uint8_t *>(data.data()), data.size());
        EXPECT_EQ(int(got), int(outcomes.at(outcome_of(name))));
        seen.insert(outcome_of(name));
    }
    EXPECT_EQ(seen.size(), outcomes.size());  // every outcome has an example
}

TEST(SdpaCorpus, ReplaysWithTheOutcomesItsNamesState) {
    using F = kor::opt::sdpa::Failure;
    const std::map<std::string, F> outcomes = {
        {"ok", F::none}, {"empty", F::stream_empty}, {"premature", F::premature_end},
        {"tokens", F::too_few_tokens}, {"integer", F::not_integer}, {"real", F::not_real},
        {"long", F::token_too_long}, {"variables", F::too_few_variables}, {"blocks", F::too_few_blocks},
        {"size", F::block_size_zero}, {"dimension", F::dimension_overflow}, {"matrix", F::matrix_number},
        {"block", F::block_number}, {"row", F::row_outside}, {"column", F::column_outside},
        {"lower", F::lower_triangle}, {"diagonal", F::off_diagonal}, {"repeated", F::repeated}};
    const auto files = corpus("data/opt/corpus/sdpa");
    for (const auto &[name, data] : files) {
        SCOPED_TRACE(name);
        ASSERT_TRUE(outcomes.count(outcome_of(name)));
        const F got = kor::sdpa_fuzz::fuzz_sdpa(reinterpret_cast<const uint8_t *>(data.data()), data.size());
        EXPECT_EQ(int(got), int(outcomes.at(outcome_of(name))));
    }
    EXPECT_GE(files.size(), outcomes.size());
}

}  // namespace
