#include "serve_command.h"

#include "server/control_server.h"
#include "server/https_server.h"
#include "server/listen_address.h"
#include "server/site.h"
#include "server/tls_context.h"
#include "server/tls_manners.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <optional>

namespace datacentre {

namespace {

// Blocks the signals that end the server, in this thread and all it makes, so that exactly one place receives them.
class EndSignals {
  public:
    EndSignals() {
        sigemptyset(&set_);
        sigaddset(&set_, SIGTERM);
        sigaddset(&set_, SIGINT);
        pthread_sigmask(SIG_BLOCK, &set_, nullptr);
        std::signal(SIGPIPE, SIG_IGN); // clients may leave at any time
    }

    void wait() const {
        int received = 0;
        while (sigwait(&set_, &received) != 0) {
        }
    }

  private:
    sigset_t set_{};
};

std::string withoutLeadingSlash(const std::string& path) {
    return path.starts_with('/') ? path.substr(1) : path;
}

} // namespace

void serve(const CommandLine& words) {
    const EndSignals signals;
    const auto controlAddress = words.optional("control");

    TlsManners manners;
    const TlsContext context(words.required("data"), manners);
    Site site(withoutLeadingSlash(words.optional("page").value_or("join")),
              words.optional("images").value_or(""),
              words.has("drive") ? Site::Driving::on : Site::Driving::off);
    HttpsServer https(ListenAddress::parse(words.required("listen")), context,
                      [&site](const ReceivedRequest& request) { return site.deliver(request); });
    https.start();

    std::optional<ControlServer> control;
    if (controlAddress) {
        control.emplace(ListenAddress::parse(*controlAddress), https, site, manners);
        control->start();
    }
    fmt::print("ready https {} control {}\n", https.address().text(),
               control ? control->address().text() : "-");
    std::fflush(stdout);

    signals.wait();
    site.drive().close();
    if (control)
        control->stop();
    https.stop();
}

} // namespace datacentre
