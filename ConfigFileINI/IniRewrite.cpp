#include "ConfigFileINI/IniRewrite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "Common/Handles.h"
#include "Common/Text.h"

namespace vintra {

namespace {

constexpr sint8 kTemporaryName[] = "Ini_temp_XXXXXX";
constexpr std::size_t kTemporaryPathSize = 1024;
constexpr std::size_t kStreamBufferSize = 16384;  // a quarter of the writes that the stream's own would take

// The folder of a file with its last '/', or nothing for the working directory.
std::string_view FolderOf(std::string_view path) { return path.substr(0, path.rfind('/') + 1); }

bool PutText(FILE* file, std::string_view text) {
  return fwrite_unlocked(text.data(), 1, text.size(), file) == text.size();
}

bool PutByte(FILE* file, sint8 byte) { return putc_unlocked(byte, file) != EOF; }

bool PutKeyLine(FILE* file, const KeyLine& line) {
  return PutText(file, line.key) && PutByte(file, line.separator) && PutText(file, line.value) &&
         PutByte(file, '\n');
}

// Copies lines, each with an LF behind it. A line as long as the buffer is only a piece: the rest of it, or
// its end, comes as the next line, so nothing is put in between.
class LineCopy {
 public:
  LineCopy(FILE* from, FILE* to) : from_(from), to_(to) {}

  sint32 Copy(sint32 count) {
    for (; count > 0; --count) {
      if (const sint32 code = Read(); code != 0) return code == kEndOfFile ? kLineUnreadable : code;
      if (!Put()) return kNotWritten;
    }
    return kIniSuccess;
  }

  sint32 Skip(sint32 count) {
    for (; count > 0; --count) {
      if (Read() != 0) return kLineUnreadable;
    }
    return kIniSuccess;
  }

  // Ends a line of which only a piece has been copied.
  bool EndLine() { return !is_piece_ || PutByte(to_, '\n'); }

  // Copies what is left. After a piece whose end has been written, or which was skipped, an empty line is
  // only its end.
  sint32 CopyRest() {
    const bool drop_end = is_piece_;
    is_piece_ = false;
    sint32 code = Read();
    if (code == 0 && drop_end && length_ == 0) code = Read();
    for (; code == 0; code = Read()) {
      if (!Put()) return kNotWritten;
    }
    if (code != kEndOfFile) return code;
    return EndLine() ? kIniSuccess : kNotWritten;
  }

 private:
  sint32 Read() {
    length_ = FileGetLine(from_, line_, kLongestLine);
    if (length_ < 0) return length_ == kReadError ? kLineUnreadable : kEndOfFile;
    is_piece_ = length_ == kLongestLine && !ClosesLine(line_[length_ - 1]);
    return kIniSuccess;
  }

  bool Put() {
    const auto length = static_cast<std::size_t>(length_);
    if (is_piece_) return PutText(to_, {line_, length});
    line_[length] = '\n';  // in the terminator's place
    return PutText(to_, {line_, length + 1});
  }

  FILE* from_;
  FILE* to_;
  sint32 length_ = 0;
  bool is_piece_ = false;
  sint8 line_[kLineSize];
};

// What goes before the key's line, and how many lines it takes the place of.
struct Place {
  sint32 head_lines;
  sint32 old_lines;
};

sint32 CopyWithLine(FILE* from, FILE* to, const Place& place, const KeyLine& line) {
  LineCopy lines(from, to);
  if (const sint32 code = lines.Copy(place.head_lines); code != 0) return code;
  if (place.old_lines == 0 && !lines.EndLine()) return kNotWritten;
  if (const sint32 code = lines.Skip(place.old_lines); code != 0) return code;
  return PutKeyLine(to, line) ? lines.CopyRest() : sint32{kNotWritten};
}

// Brings a file to the disk, where its file system knows how to. Where it does not, that is no failure: the
// file is stored as well as it can be.
bool Sync(int descriptor) {
  if (fsync(descriptor) == 0) return true;
  return errno == EINVAL || errno == ENOSYS || errno == ENOTSUP || errno == EOPNOTSUPP;
}

// A file of another name that is to become the file at path.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string_view path) {
    const std::string_view folder = FolderOf(path);
    if (folder.size() + sizeof kTemporaryName > sizeof name_) return;
    std::memcpy(name_, folder.data(), folder.size());
    std::memcpy(name_ + folder.size(), kTemporaryName, sizeof kTemporaryName);
    const StandardPlaces places;
    FileDescriptor descriptor(mkostemp(name_, O_CLOEXEC));
    if (!descriptor) return;
    stream_.reset(fdopen(descriptor.get(), "w"));
    if (!stream_) return;
    static_cast<void>(descriptor.release());
    static_cast<void>(setvbuf(stream_.get(), stream_buffer_, _IOFBF, sizeof stream_buffer_));
  }

  // Null when the file could not be made.
  FILE* stream() const { return stream_.get(); }

  // Closes the file once it is on the disk, and gives it the name at path. On failure that name's file is as
  // it was.
  bool MoveTo(const sint8* path) {
    const bool is_stored = fflush(stream()) == 0 && Sync(fileno(stream()));
    return std::fclose(stream_.release()) == 0 && is_stored && std::rename(name_, path) == 0;
  }

 private:
  sint8 name_[kTemporaryPathSize];
  sint8 stream_buffer_[kStreamBufferSize];
  FilePtr stream_;
};

// Brings the name of a new file to the disk. Nothing depends on the result: the file has its name already,
// and only a crash of the machine can still take it back to what it was before, as a whole.
void SyncFolderOf(const sint8* path) {
  sint8 folder[kTemporaryPathSize];
  const std::string_view name = FolderOf(path);
  if (!CopyText(folder, name.empty() ? "." : name)) return;
  const FileDescriptor descriptor(open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (descriptor) static_cast<void>(fsync(descriptor.get()));
}

// True when the end of a file asks to be continued. The next line would then be taken for a part of it.
bool GoesOn(std::string_view tail) {
  const std::size_t last = tail.find_last_not_of(kBlanks);
  return last != std::string_view::npos && tail[last] == ConnectLineSign;
}

sint32 Rewrite(const sint8* path, const Place& place, const KeyLine& line) {
  TemporaryFile temporary(path);
  if (temporary.stream() == nullptr) return kNoTarget;
  const FilePtr file(std::fopen(path, "re"));
  if (!file) return kFileUnreadable;
  if (const sint32 code = CopyWithLine(file.get(), temporary.stream(), place, line); code != 0) return code;
  if (!temporary.MoveTo(path)) return kNotWritten;
  SyncFolderOf(path);
  return kIniSuccess;
}

}  // namespace

sint32 ReplaceKey(const INIFileRec& found, const KeyLine& line) {
  return Rewrite(found.file_name, {found.Ini_key_line_no - 1, found.Ini_key_lines}, line);
}

sint32 InsertKey(const INIFileRec& found, const KeyLine& line) {
  return Rewrite(found.file_name, {found.Ini_section_line_no, 0}, line);
}

sint32 AppendSection(const sint8* path, bool is_missing, std::string_view section, const KeyLine& line) {
  if (section.size() + 2 > kLongestLine) return kNotWritten;
  const StandardPlaces places;
  const FileDescriptor file(open(path, O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
  struct stat before {};
  if (!file || fstat(file.get(), &before) != 0) return kNoTarget;
  sint8 tail[kLineSize];
  const off_t tail_start = std::max<off_t>(before.st_size - off_t{sizeof tail}, 0);
  const ssize_t tail_length = pread(file.get(), tail, sizeof tail, tail_start);
  if (tail_length < 0) return kLineUnreadable;

  sint8 text[2 * kLineSize + 2];  // two LF at most, and two lines with theirs
  sint8* end = text;
  const auto put = [&end](std::string_view piece) { end = std::copy(piece.begin(), piece.end(), end); };
  *end++ = '\n';
  if (GoesOn({tail, static_cast<std::size_t>(tail_length)})) *end++ = '\n';
  *end++ = SectionSymbolLeft;
  put(section);
  *end++ = SectionSymbolRight;
  *end++ = '\n';
  put(line.key);
  *end++ = line.separator;
  put(line.value);
  *end++ = '\n';
  const std::string_view bytes(text, static_cast<std::size_t>(end - text));

  if (file.WriteAll(bytes) != bytes.size() || !Sync(file.get())) {
    // When this fails too there is nothing left to try, and the result is the same.
    [[maybe_unused]] const int taken_back = ftruncate(file.get(), before.st_size);
    return kNotWritten;
  }
  if (is_missing) SyncFolderOf(path);
  return kIniSuccess;
}

}  // namespace vintra
