#include <taglib/aifffile.h>
#include <taglib/apefile.h>
#include <taglib/apetag.h>
#include <taglib/asffile.h>
#include <taglib/attachedpictureframe.h>
#include <taglib/fileref.h>
#include <taglib/flacfile.h>
#include <taglib/id3v2tag.h>
#include <taglib/mp4file.h>
#include <taglib/mpcfile.h>
#include <taglib/mpegfile.h>
#include <taglib/tfilestream.h>
#include <taglib/trueaudiofile.h>
#include <taglib/wavfile.h>
#include <taglib/wavpackfile.h>
#include <taglib/xiphcomment.h>

#include <QtCore/QtGlobal>
#include <algorithm>

#include "desktop/covers/sources.h"

namespace desktop {

namespace {

using TagLib::ByteVector;

/// Ends when the bound is reached, whatever lengths a file claims to have in it.
class BoundedStream final : public TagLib::FileStream {
 public:
  BoundedStream(const char* path, std::size_t bound) : FileStream(path, true), left_(bound) {}

  ByteVector readBlock(std::size_t length) override {
    ByteVector block = FileStream::readBlock(std::min(length, left_));
    left_ -= std::min<std::size_t>(left_, block.size());
    return block;
  }

 private:
  std::size_t left_;
};

/// The front cover among pictures with a type (ID3v2.4, "APIC"; FLAC and ASF have the same list),
/// else the first one.
class Choice {
 public:
  void offer(int type, const ByteVector& picture) {
    constexpr int frontCover = 3;
    if (picture.isEmpty() || (!best_.isEmpty() && (isFront_ || type != frontCover))) return;
    isFront_ = type == frontCover;
    best_ = picture;
  }
  const ByteVector& best() const { return best_; }

 private:
  ByteVector best_;
  bool isFront_ = false;
};

void look(const TagLib::ID3v2::Tag* tag, Choice& choice) {
  if (tag == nullptr) return;
  for (const auto* frame : tag->frameList("APIC")) {
    const auto* picture = dynamic_cast<const TagLib::ID3v2::AttachedPictureFrame*>(frame);
    if (picture != nullptr) choice.offer(picture->type(), picture->picture());
  }
}

void look(const TagLib::List<TagLib::FLAC::Picture*>& pictures, Choice& choice) {
  for (const auto* picture : pictures) choice.offer(picture->type(), picture->data());
}

void look(const TagLib::APE::Tag* tag, Choice& choice) {
  if (tag == nullptr) return;
  const auto& items = tag->itemListMap();
  const auto item = items.find("COVER ART (FRONT)");
  if (item == items.end()) return;
  // The name of a file comes first, and ends with a zero.
  const ByteVector value = item->second.binaryData();
  const int end = value.find('\0');
  if (end >= 0) choice.offer(3, value.mid(static_cast<unsigned>(end) + 1));
}

void look(TagLib::MP4::Tag* tag, Choice& choice) {
  if (tag == nullptr || !tag->contains("covr")) return;
  for (const auto& cover : tag->item("covr").toCoverArtList()) choice.offer(0, cover.data());
}

void look(const TagLib::ASF::Tag* tag, Choice& choice) {
  if (tag == nullptr) return;
  for (const auto& attribute : tag->attribute("WM/Picture")) {
    const auto picture = attribute.toPicture();
    if (picture.isValid()) choice.offer(picture.type(), picture.picture());
  }
}

void look(TagLib::File& file, Choice& choice) {
  if (auto* mpeg = dynamic_cast<TagLib::MPEG::File*>(&file)) {
    look(mpeg->ID3v2Tag(), choice);
    look(mpeg->APETag(), choice);
  } else if (auto* flac = dynamic_cast<TagLib::FLAC::File*>(&file)) {
    look(flac->pictureList(), choice);
    look(flac->ID3v2Tag(), choice);
  } else if (auto* mp4 = dynamic_cast<TagLib::MP4::File*>(&file)) {
    look(mp4->tag(), choice);
  } else if (auto* asf = dynamic_cast<TagLib::ASF::File*>(&file)) {
    look(asf->tag(), choice);
  } else if (auto* wavpack = dynamic_cast<TagLib::WavPack::File*>(&file)) {
    look(wavpack->APETag(), choice);
  } else if (auto* ape = dynamic_cast<TagLib::APE::File*>(&file)) {
    look(ape->APETag(), choice);
  } else if (auto* mpc = dynamic_cast<TagLib::MPC::File*>(&file)) {
    look(mpc->APETag(), choice);
  } else if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(&file)) {
    look(wav->ID3v2Tag(), choice);
  } else if (auto* aiff = dynamic_cast<TagLib::RIFF::AIFF::File*>(&file)) {
    look(aiff->tag(), choice);
  } else if (auto* trueAudio = dynamic_cast<TagLib::TrueAudio::File*>(&file)) {
    look(trueAudio->ID3v2Tag(), choice);
  } else if (auto* comment = dynamic_cast<TagLib::Ogg::XiphComment*>(file.tag())) {
    look(comment->pictureList(), choice);
  }
}

}  // namespace

extern "C" Q_DECL_EXPORT bool virelune_picture_in_file(const char* path, std::size_t bound,
                                                       std::vector<std::uint8_t>& picture) {
  BoundedStream stream(path, bound);
  const TagLib::FileRef reference(&stream, false);
  if (reference.isNull()) return false;
  Choice choice;
  look(*reference.file(), choice);
  picture.assign(choice.best().begin(), choice.best().end());
  return !picture.empty();
}

}  // namespace desktop
