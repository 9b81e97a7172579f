// Replays the committed corpus of the option-file fuzz target through the
// same body the fuzzer runs (its own expectations trap on failure); each
// file's name begins with the outcome the reader must report for it.
#include <dirent.h>

#include <map>
#include <set>

#include "opt/option_file_fuzz_body.hpp"
#include "opt/options_support.hpp"

namespace {

TEST(OptionFileCorpus, ReplaysWithTheOutcomesItsNamesState) {
    using S = kor::opt::FileReading::Status;
    const std::map<std::string, S> outcomes = {{"ok", S::ok},
                                               {"no_begin", S::no_begin},
                                               {"no_end", S::no_end},
                                               {"no_delimiter", S::no_delimiter},
                                               {"setting_failed", S::setting_failed}};
    const std::string dir = std::string(KOR_SOURCE_DIR) + "/tests/opt/corpus/option_file";
    DIR *d = opendir(dir.c_str());
    ASSERT_NE(d, nullptr) << dir;
    std::set<std::string> seen;
    for (dirent *e; (e = readdir(d));) {
        const std::string name = e->d_name;
        if (name[0] == '.') continue;
        SCOPED_TRACE(name);
        const std::string prefix = name.substr(0, name.find('-'));
        ASSERT_TRUE(outcomes.count(prefix));
        const std::string data = kor::opt_test::read_file(dir + "/" + name);
        const S got = kor::opt_fuzz::fuzz_option_file(reinterpret_cast<const uint8_t *>(data.data()), data.size());
        EXPECT_EQ(int(got), int(outcomes.at(prefix)));
        seen.insert(prefix);
    }
    closedir(d);
    EXPECT_EQ(seen.size(), outcomes.size());  // every outcome has an example
}

}  // namespace
