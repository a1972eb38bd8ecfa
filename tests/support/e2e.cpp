#include "support/e2e.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kavren::test {

namespace fs = std::filesystem;

TempDir::TempDir() {
  std::string pattern = (fs::temp_directory_path() / "kavren-e2e-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

void TempDir::write(const std::string& name, const std::string& bytes) const {
  std::ofstream out(path_ + "/" + name, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + name);
}

std::optional<std::string> TempDir::read(const std::string& name) const {
  // Only a regular file counts as written: a directory in its place is no score file.
  struct stat info {};
  if (stat((path_ + "/" + name).c_str(), &info) != 0 || !S_ISREG(info.st_mode)) {
    return std::nullopt;
  }
  std::ifstream in(path_ + "/" + name, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

std::string checker_binary() {
  return KAVREN_CHECK_BIN;
}

namespace {

std::string drain(int fd) {
  std::string data;
  char buffer[65536];
  for (;;) {
    ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n > 0) {
      data.append(buffer, static_cast<size_t>(n));
    } else if (n == 0 || errno != EINTR) {
      break;
    }
  }
  return data;
}

}  // namespace

RunResult run_child(const std::string& dir, const std::function<void()>& body,
                    const std::vector<ResourceLimit>& limits) {
  // Standard error goes to a file so that neither pipe can fill up and block the child.
  std::string err_path = dir + "/.stderr";
  int out_pipe[2];
  if (pipe(out_pipe) != 0) throw std::runtime_error("pipe failed");
  std::fflush(nullptr);  // nothing the parent buffered may be written twice
  pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("fork failed");
  if (pid == 0) {
    int err_fd = open(err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(out_pipe[1], 1);
    if (err_fd >= 0) dup2(err_fd, 2);
    if (err_fd > 2) close(err_fd);
    close(out_pipe[0]);
    close(out_pipe[1]);
    if (chdir(dir.c_str()) != 0) _exit(126);
    for (const ResourceLimit& limit : limits) {
      const rlimit value{static_cast<rlim_t>(limit.value), static_cast<rlim_t>(limit.value)};
      if (setrlimit(limit.resource, &value) != 0) _exit(125);
    }
    body();
    _exit(127);
  }
  close(out_pipe[1]);
  RunResult result;
  result.out = drain(out_pipe[0]);
  close(out_pipe[0]);
  int wstatus = 0;
  while (waitpid(pid, &wstatus, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(wstatus)) {
    result.status = WEXITSTATUS(wstatus);
  } else if (WIFSIGNALED(wstatus)) {
    result.status = 128 + WTERMSIG(wstatus);
  }
  std::ifstream err(err_path, std::ios::binary);
  std::ostringstream err_bytes;
  err_bytes << err.rdbuf();
  result.err = err_bytes.str();
  fs::remove(err_path);
  struct stat info {};
  std::ifstream score(dir + "/ScoreData.txt", std::ios::binary);
  if (stat((dir + "/ScoreData.txt").c_str(), &info) == 0 && S_ISREG(info.st_mode) && score) {
    std::ostringstream bytes;
    bytes << score.rdbuf();
    result.score = bytes.str();
  }
  return result;
}

RunResult run_in(const std::string& dir, const std::string& binary,
                 const std::vector<std::string>& args, const std::vector<std::string>& env,
                 const std::vector<ResourceLimit>& limits) {
  return run_child(
      dir,
      [&] {
        for (const std::string& entry : env) putenv(const_cast<char*>(entry.c_str()));
        std::vector<char*> argv;
        argv.push_back(const_cast<char*>(binary.c_str()));
        for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        execv(binary.c_str(), argv.data());
      },
      limits);
}

RunResult run_check(const std::map<std::string, std::string>& files,
                    const std::vector<std::string>& args, const std::vector<std::string>& env) {
  TempDir dir;
  for (const auto& [name, bytes] : files) dir.write(name, bytes);
  return run_in(dir.path(), checker_binary(), args, env);
}

std::string catalogue_text(const std::map<int, CatalogueRow>& planted) {
  std::string text = "ID\tEpoch(MJD)\ta(AU)\te\ti(deg)\tOmega(deg)\tomega(deg)\tM(deg)\n";
  text.reserve(60000 * 80);
  char line[256];
  const CatalogueRow fallback;
  for (int id = 1; id <= 60000; ++id) {
    auto it = planted.find(id);
    const CatalogueRow& row = it == planted.end() ? fallback : it->second;
    std::snprintf(line, sizeof line, "%d\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\t%.17g\n", id,
                  row.epoch, row.a, row.e, row.i, row.raan, row.argp, row.M);
    text += line;
  }
  return text;
}

}  // namespace kavren::test
