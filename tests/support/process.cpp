#include "support/process.hpp"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kor::test {

namespace {
std::string slurp(const std::string &path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}
}  // namespace

ProcessResult run_process(const std::string &program, const std::vector<std::string> &args,
                          const std::string &cwd) {
    char out_path[] = "/tmp/kor_probe_outXXXXXX";
    char err_path[] = "/tmp/kor_probe_errXXXXXX";
    const int out_fd = mkstemp(out_path), err_fd = mkstemp(err_path);
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(out_fd, 1);
        dup2(err_fd, 2);
        if (!cwd.empty() && chdir(cwd.c_str()) != 0) _exit(126);
        std::vector<char *> argv{const_cast<char *>(program.c_str())};
        for (const std::string &a : args) argv.push_back(const_cast<char *>(a.c_str()));
        argv.push_back(nullptr);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    close(out_fd);
    close(err_fd);
    ProcessResult result{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                         slurp(out_path), slurp(err_path)};
    unlink(out_path);
    unlink(err_path);
    return result;
}

std::string probe(const std::string &name) { return std::string(KOR_PROBE_DIR) + "/" + name; }

}  // namespace kor::test
