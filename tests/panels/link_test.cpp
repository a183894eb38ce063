#include "panels/link.h"

#include <sstream>

#include "tests/support/instant_http.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Link : public tests::WidgetFixture {
 protected:
  Link() { platform_.http = &network; }

  /// What the workspace was asked to open for an artist whose search brings this reply.
  std::vector<std::string> openedFor(const std::string& artist, const std::string& reply) {
    workspaceBackend.asked.clear();
    network.replies = {reply};
    const bool opened = VLLink::openStoreForArtist(artist);
    EXPECT_EQ(opened, !workspaceBackend.asked.empty());
    return workspaceBackend.asked;
  }

  tests::InstantHTTP network;
};

TEST_F(Link, SearchKeepsQuerySyntaxAndAsksForAFreshCopy) {
  openedFor("a + b&c é", "");
  ASSERT_EQ(network.requests.size(), 1U);
  const auto& request = network.requests[0];
  EXPECT_EQ(request.url,
            "https://itunes.apple.com/search?term=a+++b&c+%C3%A9"
            "&media=music&attribute=artistTerm&entity=musicArtist");
  EXPECT_EQ(request.timeout, 3);
  EXPECT_THAT(request.headers, testing::Contains(std::pair("Cache-Control", "no-cache")));
}

TEST_F(Link, FirstMatchingArtistsPageOpensAsAStoreLink) {
  EXPECT_THAT(openedFor("foo", R"({"results":[null,{"artistName":"Foo Fighters","artistLinkUrl":
      "https://x.example/1"},{"artistName":"FOO","artistLinkUrl":"https://x.example/2?uo=4&q=%2B#top",
      "artistViewUrl":"https://x.example/3"},{"artistName":"foo","artistLinkUrl":"https://x/4"}]})"),
              ElementsAre("open itms://x.example/2?uo=4&q=%2B&at=4p8d27M#top"));
  EXPECT_THAT(openedFor("foo", R"({"results":[{"artistName":"foo","artistLinkUrl":"",
      "artistViewUrl":"//x.example/3"},{"artistName":"foo","artistLinkUrl":"https://x/4"}]})"),
              ElementsAre("open itms://x.example/3?at=4p8d27M"));
}

TEST_F(Link, WhateverIsMissingOpensNothing) {
  std::istringstream bad(R"(
nonsense
[]
{}
[{"artistName":"foo","artistLinkUrl":"https://x/"}]
{"results":[]}
{"results":"foo"}
{"results":[{"artistName":"food","artistLinkUrl":"https://x/"}]}
{"results":[{"artistName":7,"artistLinkUrl":"https://x/"}]}
{"results":[{"artistName":"foo"},{"artistName":"foo","artistLinkUrl":"https://x/"}]}
{"results":[{"artistName":"foo","artistLinkUrl":"https://not an address"}]})");
  for (std::string reply; std::getline(bad, reply);) {
    EXPECT_THAT(openedFor("foo", reply), IsEmpty()) << reply;
  }
  const std::size_t asked = network.requests.size();
  EXPECT_FALSE(VLLink::openStoreForArtist(""));
  EXPECT_EQ(network.requests.size(), asked);
  platform_.workspace = nullptr;
  network.replies = {R"({"results":[{"artistName":"foo","artistLinkUrl":"https://x/"}]})"};
  EXPECT_FALSE(VLLink::openStoreForArtist("foo"));
}

}  // namespace
}  // namespace virelune
