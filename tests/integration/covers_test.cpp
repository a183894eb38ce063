// The pictures in real audio files.
#include <gtest/gtest.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/flacpicture.h>
#include <taglib/wavpackfile.h>

#include <fstream>

#include "desktop/covers/sources.h"
#include "tests/integration/processes.h"
#include "tests/support/temporary_folder.h"

namespace tests {
namespace {

class PicturesInFiles : public testing::Test {
 protected:
  static QString cover(const char* name) {
    return QString(VIRELUNE_TEST_BUNDLE "/covers/%1.png").arg(name);
  }
  QString path(const QString& name) const {
    return QString::fromStdString((folder_.path() / name.toStdString()).string());
  }
  /// A tenth of a second of silence, with these arguments before its name.
  QString made(const QString& name, const QStringList& arguments = {}) const {
    outputOf("ffmpeg", QStringList{"-v", "error", "-f", "lavfi", "-t", "0.1", "-i", "anullsrc"} +
                           arguments + QStringList{path(name)});
    return path(name);
  }
  static std::string pictureIn(const QString& file) {
    std::string found;
    desktop::coverSources()[1].offer({{.path = file.toStdString()}, {}},
                                     [&](const platform::Data& picture) {
                                       found = picture.view();
                                       return true;
                                     });
    return found;
  }

  const TemporaryFolder folder_;
};

TEST_F(PicturesInFiles, OfEveryContainerAreFoundTheFrontCoverFirst) {
  const std::string waves = contents(cover("waves").toStdString());
  const QStringList attached{"-i",   cover("waves"),     "-map",        "0", "-map", "1", "-c:v",
                             "copy", "-disposition:v:0", "attached_pic"};
  for (const char* name : {"a.mp3", "a.flac", "a.m4a"}) {
    EXPECT_TRUE(pictureIn(made(name, attached)) == waves) << name;
  }
  EXPECT_TRUE(pictureIn(made("a.aiff", attached + QStringList{"-write_id3v2", "1"})) == waves);
  EXPECT_TRUE(pictureIn(made("front.mp3", {"-i", cover("rings"), "-i", cover("waves"), "-map", "0",
                                           "-map", "1", "-map", "2", "-c:v", "copy",
                                           "-metadata:s:v:1", "comment=Cover (front)"})) == waves);
  // What ffmpeg does not write.
  const auto bytes = TagLib::ByteVector(waves.data(), static_cast<unsigned>(waves.size()));
  TagLib::FLAC::Picture block;
  block.setData(bytes);
  const std::string encoded(block.render().toBase64().data(), block.render().toBase64().size());
  for (const char* name : {"a.ogg", "a.opus"}) {
    const auto option = QString::fromStdString("metadata_block_picture=" + encoded);
    EXPECT_TRUE(pictureIn(made(name, {"-metadata", option})) == waves) << name;
  }
  {
    TagLib::WavPack::File wavpack(made("a.wv").toUtf8().constData());
    wavpack.APETag(true)->setData("COVER ART (FRONT)",
                                  TagLib::ByteVector("waves.png\0", 10) + bytes);
    wavpack.save();
    TagLib::ASF::File windows(made("a.wma").toUtf8().constData());
    TagLib::ASF::Picture picture;
    picture.setPicture(bytes);
    windows.tag()->setAttribute("WM/Picture", picture);
    windows.save();
  }
  EXPECT_TRUE(pictureIn(path("a.wv")) == waves);
  EXPECT_TRUE(pictureIn(path("a.wma")) == waves);
}

TEST_F(PicturesInFiles, AreMissingFromFilesWithoutCutAndHugeOnesAndWhatIsNoMusic) {
  EXPECT_EQ(pictureIn(made("none.mp3")), "");
  EXPECT_EQ(pictureIn(path("missing.mp3")), "");
  std::ofstream(path("text.mp3").toStdString()) << "ID3\x04 and no more";
  EXPECT_EQ(pictureIn(path("text.mp3")), "");
  const QString cut = made("cut.flac", {"-i", cover("waves"), "-map", "0", "-map", "1", "-c:v",
                                        "copy", "-disposition:v:0", "attached_pic"});
  std::filesystem::resize_file(cut.toStdString(), 3000);
  EXPECT_LT(pictureIn(cut).size(), 3000U);
  // A tag of 200 MB, by its own account.
  std::ofstream huge(path("huge.mp3").toStdString(), std::ios::binary);
  huge << std::string("ID3\x03\0\0\x5F\x2F\x10\0", 10)
       << std::string("APIC\x0B\xEB\xC2\0\0\0\0image/png\0\3\0\0", 24);
  huge.close();
  std::filesystem::resize_file(path("huge.mp3").toStdString(), 250'000'000);
  EXPECT_LE(pictureIn(path("huge.mp3")).size(), desktop::longestCover);
}

}  // namespace
}  // namespace tests
