#include "demo/demo_store.h"

#include <nlohmann/json.hpp>
#include <sstream>

#include "demo/loopback_certificate.h"
#include "demo/serving_thread.h"
#include "platform/foundation/text.h"

namespace demo {
namespace {

/// Whether every word of a search occurs in a text.
bool matches(const std::string& text, const std::string& term) {
  std::istringstream words(term);
  std::string word;
  bool isFound = false;
  while (words >> word) {
    if (!platform::caseInsensitiveContains(text, word)) return false;
    isFound = true;
  }
  return isFound;
}

}  // namespace

class DemoStore::Server {
 public:
  Server(LoopbackCertificate certificate, std::vector<StoreAlbum> albums)
      : certificate_(std::move(certificate)),
        albums_(std::move(albums)),
        server_(certificate_.certificate(), certificate_.key()) {
    server_.Get("/search", [this](const httplib::Request& request, httplib::Response& response) {
      response.set_content(reply(request), "text/javascript; charset=utf-8");
    });
    server_.Get("/covers/(\\d{1,4})/\\d{3,4}x\\d{3,4}\\.png",
                [this](const httplib::Request& request, httplib::Response& response) {
                  const auto index = static_cast<std::size_t>(std::stoul(request.matches[1]));
                  if (index >= albums_.size()) {
                    response.status = 404;
                    return;
                  }
                  response.set_content(std::string(albums_[index].cover.view()), "image/png");
                });
  }

  bool start() { return server_.is_valid() && thread_.start(); }
  std::string host() const { return thread_.host(); }
  std::string certificate() const { return certificate_.pem(); }

 private:
  std::string reply(const httplib::Request& request) const {
    auto results = nlohmann::json::array();
    if (request.get_param_value("entity") == "album") {
      const std::string term = request.get_param_value("term");
      for (std::size_t index = 0; index < albums_.size(); ++index) {
        const auto& [artist, album, cover] = albums_[index];
        if (!matches(artist + " " + album, term)) continue;
        results.push_back({{"wrapperType", "collection"},
                           {"collectionType", "Album"},
                           {"artistName", artist},
                           {"collectionName", album},
                           {"artworkUrl100", "https://" + host() + "/covers/" +
                                                 std::to_string(index) + "/100x100.png"}});
      }
    }
    return nlohmann::json{{"resultCount", results.size()}, {"results", results}}.dump();
  }

  const LoopbackCertificate certificate_;
  const std::vector<StoreAlbum> albums_;
  httplib::SSLServer server_;
  ServingThread thread_{server_};
};

std::unique_ptr<DemoStore> DemoStore::start(std::vector<StoreAlbum> albums) {
  auto certificate = LoopbackCertificate::make();
  if (!certificate) return nullptr;
  auto server = std::make_unique<Server>(std::move(*certificate), std::move(albums));
  return server->start() ? std::make_unique<DemoStore>(std::move(server)) : nullptr;
}

DemoStore::DemoStore(std::unique_ptr<Server> server) : server_(std::move(server)) {}

DemoStore::~DemoStore() = default;

std::string DemoStore::host() const { return server_->host(); }

std::string DemoStore::certificate() const { return server_->certificate(); }

}  // namespace demo
