// Replays the committed corpus of the SDPA fuzz target through the same
// body the fuzzer runs (its own expectations trap on failure); each file's
// name begins with the outcome the reader must report for it.
#include <dirent.h>

#include <map>

#include "opt/sdpa_fuzz_body.hpp"
#include "opt_support.hpp"

namespace {

TEST(SdpaCorpus, ReplaysWithTheOutcomesItsNamesState) {
    using F = kor::opt::sdpa::Failure;
    const std::map<std::string, F> outcomes = {
        {"ok", F::none}, {"empty", F::stream_empty}, {"premature", F::premature_end},
        {"tokens", F::too_few_tokens}, {"integer", F::not_integer}, {"real", F::not_real},
        {"long", F::token_too_long}, {"variables", F::too_few_variables}, {"blocks", F::too_few_blocks},
        {"size", F::block_size_zero}, {"dimension", F::dimension_overflow}, {"matrix", F::matrix_number},
        {"block", F::block_number}, {"row", F::row_outside}, {"column", F::column_outside},
        {"lower", F::lower_triangle}, {"diagonal", F::off_diagonal}, {"repeated", F::repeated}};
    const std::string dir = std::string(KOR_SOURCE_DIR) + "/tests/opt/corpus/sdpa";
    DIR *d = opendir(dir.c_str());
    ASSERT_NE(d, nullptr) << dir;
    size_t files = 0;
    for (dirent *e; (e = readdir(d));) {
        const std::string name = e->d_name;
        if (name[0] == '.') continue;
        SCOPED_TRACE(name);
        const std::string prefix = name.substr(0, name.find('-'));
        ASSERT_TRUE(outcomes.count(prefix));
        const std::string data = opt_test::read_file(dir + "/" + name);
        const F got = kor::sdpa_fuzz::fuzz_sdpa(reinterpret_cast<const uint8_t *>(data.data()), data.size());
        EXPECT_EQ(int(got), int(outcomes.at(prefix)));
        ++files;
    }
    closedir(d);
    EXPECT_GE(files, outcomes.size());
}

}  // namespace
