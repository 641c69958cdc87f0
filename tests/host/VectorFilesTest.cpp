// The vector pictures of `lumivane shot`, which needs no display for them.

#include "ShotShares.h"
#include "host/Process.h"
#include "support/TempFolder.h"
#include "support/Vectors.h"
#include "support/WorkingFolder.h"

#include <lumivane/measure/VisibleShares.h>
#include <lumivane/session/LoadedScene.h>

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Lumivane::Host {
namespace {

namespace fs = std::filesystem;
using Lumivane::Test::fileBytes;
using Lumivane::Test::Json;
using Lumivane::Test::Result;
using Lumivane::Test::TempFolder;

const std::string Small = LUMIVANE_SCENES "/small.json";

Result shot(const std::string& scene, const std::vector<std::string>& more) {
  std::vector<std::string> arguments = {LUMIVANE_PROGRAM, "shot", scene, "--eye", "-4,0.35,1.9"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}});
}

size_t count(const std::string& text, const std::string& part) {
  size_t found = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
  return found;
}

TEST(ShotShares, AreMeasuredOnceForAllOutputs) {
  Session::LoadedScene scene = Session::LoadedScene::fromFile(Small);
  const Session::TakenShot shot = scene.take({});
  ShotShares shares(shot);
  const Measure::VisibleShares& first = shares.get();
  EXPECT_EQ(3u, first.objects().size());
  EXPECT_EQ(&first, &shares.get());
}

TEST(VectorFiles, AllFormatsAreWrittenWithoutADisplay) {
  const TempFolder folder;
  const Result result =
      shot(Small, {"--svg", folder.path("a.svg"), "--pdf", folder.path("a.pdf"), "--eps",
                   folder.path("a.eps"), "--png-vector", folder.path("a.png"), "--size", "320x200",
                   "-o", folder.path("shot.json"), "--stats", folder.path("stats.json")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.err);
  const std::string svg = fileBytes(folder.path("a.svg"));
  EXPECT_NE(std::string::npos, svg.find("viewBox=\"0 0 320 200\""));
  EXPECT_EQ(Json::parse(fileBytes(folder.path("shot.json"))).at("Regions").size(),
            count(svg, "data-region="));
  EXPECT_EQ(0u, fileBytes(folder.path("a.pdf")).find("%PDF"));
  EXPECT_EQ(0u, fileBytes(folder.path("a.eps")).find("%!PS-Adobe-3.0 EPSF-3.0"));
  EXPECT_EQ(0u, fileBytes(folder.path("a.png")).find("\x89PNG"));
  EXPECT_GT(Json::parse(fileBytes(folder.path("stats.json"))).at("seconds").at("vector"), 0.0);
}

TEST(VectorFiles, EqualRunsWriteEqualBytes) {
  const TempFolder folder;
  for (const std::string name : {"a", "b"}) {
    ASSERT_EQ(0, shot(Small, {"--svg", folder.path(name + ".svg"), "--pdf",
                              folder.path(name + ".pdf"), "--eps", folder.path(name + ".eps"),
                              "--png-vector", folder.path(name + ".png"), "--axes"})
                     .status);
  }
  for (const std::string kind : {".svg", ".pdf", ".eps", ".png"})
    EXPECT_EQ(fileBytes(folder.path("a" + kind)), fileBytes(folder.path("b" + kind))) << kind;
}

TEST(VectorFiles, OptionsChangeThePicture) {
  const TempFolder folder;
  const auto svg = [&folder](std::vector<std::string> more) {
    more.insert(more.end(), {"--svg", folder.path("a.svg")});
    EXPECT_EQ(0, shot(Small, more).status);
    return fileBytes(folder.path("a.svg"));
  };
  const std::string plain = svg({});
  EXPECT_EQ(std::string::npos, plain.find("id=\"axes\""));
  EXPECT_NE(std::string::npos, svg({"--axes"}).find("id=\"axes\""));
  EXPECT_NE(plain, svg({"--extent", "1.2"}));
  EXPECT_NE(std::string::npos, svg({"--style", "half"}).find("fill-opacity=\".5\""));
  EXPECT_EQ(std::string::npos, svg({"--style", "outline"}).find("fill=\"#"));
  EXPECT_NE(svg({"--axes"}), svg({"--axes", "--camera", "normal"}));
}

// What the page says of how wrong its pictures are.
Json auditsOf(const std::string& page) {
  const std::string start = "id=\"data\">";
  const size_t from = page.find(start) + start.size();
  const Json data = Json::parse(page.substr(from, page.find("</script>", from) - from));
  return data.contains("audits") ? data.at("audits") : Json::array();
}

TEST(VectorFiles, PageShadesWhereAnAuditedShotIsWrong) {
  const Lumivane::Test::WorkingFolder work;  // for the report of cyclic overlaps
  const TempFolder folder;
  const std::string ring = LUMIVANE_SCENES "/ring.json";
  const auto page = [&](const std::string& scene, const std::string& eye,
                        const std::vector<std::string>& more) {
    std::vector<std::string> arguments = {LUMIVANE_PROGRAM, "shot", scene, "--eye=" + eye};
    arguments.insert(arguments.end(), {"--html", folder.path("a.html")});
    arguments.insert(arguments.end(), {"--stats", folder.path("a.json")});
    arguments.insert(arguments.end(), more.begin(), more.end());
    EXPECT_EQ(0, Lumivane::Test::runProcess(arguments, {{"DISPLAY", {}}}).status);
    return fileBytes(folder.path("a.html"));
  };
  const std::string plain = page(ring, "-4,0,0", {});
  EXPECT_EQ(0u, auditsOf(plain).size());
  EXPECT_EQ(0u, count(plain, "data-shown=\""));

  const std::string audited = page(ring, "-4,0,0", {"--audit"});
  ASSERT_EQ(1u, auditsOf(audited).size());
  const Json stats = Json::parse(fileBytes(folder.path("a.json"))).at("audit");
  const Json audit = auditsOf(audited).at(0);
  EXPECT_NEAR(stats.at("wrong_share"), audit.at("share"), 1e-9);
  EXPECT_NEAR(stats.at("wrong_share"), audit.at("shaded"), 1e-4);
  EXPECT_GT(audit.at("shaded"), 0.05);
  EXPECT_EQ(1u, count(audited, "id=\"p1-wrong\""));
  EXPECT_GT(count(audited, "data-shown=\""), 0u);

  const std::string both = page(ring, "-4,0,0", {"--audit", "--html-both"});
  EXPECT_EQ(audit, auditsOf(both).at(0));
  ASSERT_EQ(2u, auditsOf(both).size());
  EXPECT_GT(auditsOf(both).at(1).at("shaded"), 0.0);
  EXPECT_EQ(1u, count(both, "id=\"p2-wrong\""));

  const std::string right =
      page(Small, "-2.6,0.35,1.9", {"--forward=1,-0.06,-0.45", "--audit", "--html-both"});
  for (const Json& one : auditsOf(right)) EXPECT_EQ(0.0, one.at("shaded"));
  EXPECT_EQ(0u, count(right, "data-shown=\""));
}

TEST(VectorFiles, PageHasOneProjectionOrBoth) {
  const TempFolder folder;
  ASSERT_EQ(0, shot(Small, {"--html", folder.path("a.html")}).status);
  ASSERT_EQ(0, shot(Small, {"--html", folder.path("b.html"), "--html-both"}).status);
  ASSERT_EQ(
      0,
      shot(Small, {"--html", folder.path("c.html"), "--html-both", "--camera", "normal"}).status);
  const auto projections = [&folder](const std::string& name) {
    const std::string page = fileBytes(folder.path(name));
    const std::string start = "id=\"data\">";
    const size_t from = page.find(start) + start.size();
    const Json data = Json::parse(page.substr(from, page.find("</script>", from) - from));
    std::string names;
    for (const Json& picture : data.at("pictures"))
      names += picture.at("name").get<std::string>() + " ";
    return names;
  };
  EXPECT_EQ("radial ", projections("a.html"));
  EXPECT_EQ("radial square ", projections("b.html"));
  EXPECT_EQ("square radial ", projections("c.html"));
  EXPECT_NE(std::string::npos, fileBytes(folder.path("a.html")).find("<title>small.json</title>"));
}

TEST(VectorFiles, NonsenseIsReportedInOneLine) {
  const TempFolder folder;
  const auto error = [](const std::vector<std::string>& more) {
    const Result result = shot(Small, more);
    EXPECT_NE(0, result.status);
    EXPECT_EQ('\n', result.err.back());
    EXPECT_EQ(1u, count(result.err, "\n"));
    return result.err;
  };
  EXPECT_NE(std::string::npos, error({"--extent", "0"}).find("--extent"));
  EXPECT_NE(std::string::npos, error({"--extent", "wide"}).find("--extent"));
  EXPECT_NE(std::string::npos,
            error({"--extent=nan"}).find("--extent: \"nan\" is not a number of 0.001 to 1000"));
  EXPECT_NE(std::string::npos, error({"--html-both"}).find("--html"));
  EXPECT_NE(std::string::npos, error({"--svg", folder.path("none/a.svg")}).find("none/a.svg"));
  EXPECT_NE(std::string::npos, error({"--svg", folder.path("a"), "--pdf", folder.path("a")})
                                   .find("is already named for another file"));
  EXPECT_NE(std::string::npos, error({"--svg", Small}).find("is already named for another file"));
  EXPECT_FALSE(fs::exists(folder.path("a")));
}

TEST(VectorFiles, PictureThatCannotBeDrawnLeavesTheOldFileAndTellsTheRegion) {
  const TempFolder folder;
  Json scene = Json::parse(fileBytes(Small));
  scene.at("Brushes") = Json::array({scene.at("Brushes").at(0)});
  const std::string broken = folder.file("broken.json", scene.dump());
  folder.file("a.svg", "before");
  const Result result =
      shot(broken, {"--pdf", folder.path("a.pdf"), "--svg", folder.path("a.svg")});
  EXPECT_EQ(1, result.status);
  EXPECT_NE(std::string::npos, result.err.find("a.svg: the picture is not drawn: region "))
      << result.err;
  EXPECT_NE(std::string::npos, result.err.find("but there are 1"));
  EXPECT_EQ("before", fileBytes(folder.path("a.svg")));
  EXPECT_FALSE(fs::exists(folder.path("a.pdf")));
}

TEST(VectorFiles, ViewOfNothingIsAnEmptyPicture) {
  const TempFolder folder;
  const Result result = shot(
      Small, {"--forward", "-1,0,0", "--svg", folder.path("a.svg"), "--pdf", folder.path("a.pdf")});
  ASSERT_EQ(0, result.status) << result.err;
  EXPECT_EQ(0u, count(fileBytes(folder.path("a.svg")), "<path"));
  EXPECT_EQ(0u, fileBytes(folder.path("a.pdf")).find("%PDF"));
}

}  // namespace
}  // namespace Lumivane::Host
