// Web hooks to servers whose certificate nobody vouches for.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/controller/programming/ActionHelp.h"

namespace {

/// An HTTPS server with a certificate of its own making.
class SelfSignedServer {
 public:
  SelfSignedServer() {
    char folder[] = "/tmp/vexalink-XXXXXX";
    folder_ = mkdtemp(folder);
    const std::string script =
        "cd " + folder_ +
        " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2"
        " -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 -keyout key -out cert"
        " >log 2>&1 && echo $$ && exec openssl s_server -accept 127.0.0.1:0 -cert cert -key key"
        " -www 2>>log";
    output_ = popen(script.c_str(), "r");
    long pid = 0;
    if (std::fscanf(output_, "%ld", &pid) == 1) pid_ = static_cast<pid_t>(pid);
    char line[256];
    while (port_ == 0 && std::fgets(line, sizeof line, output_) != nullptr) {
      std::sscanf(line, "ACCEPT 127.0.0.1:%d", &port_);
    }
  }
  ~SelfSignedServer() {
    if (pid_ > 0) kill(pid_, SIGKILL);
    pclose(output_);
    std::filesystem::remove_all(folder_);
  }
  SelfSignedServer(const SelfSignedServer&) = delete;
  SelfSignedServer& operator=(const SelfSignedServer&) = delete;

  int Port() const { return port_; }

 private:
  std::string folder_;
  std::FILE* output_ = nullptr;
  pid_t pid_ = 0;
  int port_ = 0;
};

class HookCertificates : public ActionTest {};

TEST_F(HookCertificates, AreChecked) {
  const SelfSignedServer server;
  ASSERT_NE(server.Port(), 0);
  const auto outcome = Do(Hook("https://127.0.0.1:" + std::to_string(server.Port()) + "/", 3));
  const std::string text = Text(outcome);
  EXPECT_EQ(text.substr(0, 31), "failed: SSL certificate problem") << text;
  EXPECT_EQ(text.find("attempts"), std::string::npos) << "repeating does not mend it: " << text;
  EXPECT_EQ(outcome.output, "");
}

}  // namespace
