/*
 * Vintra's INI files: reading, writing and listing the keys of a section, and the signs of the syntax.
 *
 *   # a comment: the sign is the line's first character, blanks apart
 *   [net]
 *   port = 8080
 *   greeting = one line+
 *              and another
 *
 * A file is a sequence of lines of bytes in any encoding. LF, CR and NUL end a line; form feed (0x0C) and
 * substitute (0x1A) end it too and stay its last character. Blanks are the space and the tab; those at both
 * ends of a line mean nothing, but for lines that continue another. A line of 4096 bytes or more counts as
 * several: pieces of 4096, and what is left, also when that is empty.
 *
 *   section  "[name]". The name is every byte between the signs. It goes on to the next line that begins with
 *            the left sign; of several sections of one name the first one counts. Such a line that has three
 *            bytes or more and no right sign at its end is malformed; "[", "[]" and "[x" name the empty
 *            section, which is listed and never found.
 *   key      "name=value", split at the first separator; blanks around it mean nothing. The value may be
 *            empty. A line without separator, or beginning with it, is malformed.
 *   '+'      at the end of a key's line goes on with the next line, whatever that begins with. Its leading
 *            blanks are dropped; those at its end stay, and a '+' before them is text. An empty line ends
 *            the value. The whole has up to 4096 bytes. Lines that end in CR LF cannot be continued, as each
 *            is followed by an empty one.
 *
 * Names are compared byte by byte. The first match counts, and what stands behind it is not examined; a
 * malformed line before it hides it.
 *
 * Texts are NUL-terminated, sizes are in bytes. All buffers belong to the caller. Null and empty arguments
 * give each function's neutral result and change nothing. Nothing is kept between calls, no heap is used
 * beside what opening a file takes, and no message is written. Reading takes Ini_file as it is, so that a
 * relative name counts from the working directory. A call takes up to 32 KiB of stack.
 *
 * Threads: calls on different files do not touch each other. Whoever writes a file sees to it that nobody
 * else is writing it. A reader sees the file as it was before a change of a key or after it. Of a section
 * that is being appended it may see only the beginning, and a process that is killed then may leave it so.
 * The signs belong to the whole process and are changed only while no other thread is inside one of these
 * functions.
 */
#ifndef VINTRA_CONFIGFILEINI_CONFIGFILEINI_H
#define VINTRA_CONFIGFILEINI_CONFIGFILEINI_H

#include "../Common/BaseTypes.h"

#define VINTRA_INI_LINE_SIZE 4097 /* bytes that hold every line, and so every value, with a terminator */

#ifdef __cplusplus
extern "C" {
#endif

/* The signs, each one byte. They may be written directly, at best through SetConfigINISign. A 0 matches
 * nothing, and without a separator no key can be written. */
extern VINTRA_API sint8 SectionSymbolLeft;  /* '[' first byte of a section line */
extern VINTRA_API sint8 SectionSymbolRight; /* ']' last byte of a section line */
extern VINTRA_API sint8 KeyValueSplitSign;  /* '=' between key and value */
extern VINTRA_API sint8 NoteLineSign;       /* '#' first byte of a comment */
extern VINTRA_API sint8 ConnectLineSign;    /* '+' last byte of a line that goes on in the next */

/* Sets all five signs; 0 selects a sign's default. Any other byte is taken as it is, also where two signs
 * then are the same. Returns 0. */
VINTRA_API uint32 SetConfigINISign(sint8 section_symbol_left, sint8 section_symbol_right,
                                   sint8 key_value_split_sign, sint8 note_line_sign, sint8 connect_line_sign);

/* Stores each sign through its pointer; a null pointer is not wanted. Returns 0. */
VINTRA_API uint32 GetConfigINISign(sint8* section_symbol_left, sint8* section_symbol_right,
                                   sint8* key_value_split_sign, sint8* note_line_sign,
                                   sint8* connect_line_sign);

/*
 * Copies the value of a key into key_value_buf, which has value_buf_size bytes; or key_value_default, which
 * may be null for an empty text, when the file cannot be read, has no such section or key, is malformed
 * before it, or joins a line of more than 4096 bytes on the way. What does not fit the buffer is cut off; one
 * of VINTRA_INI_LINE_SIZE bytes holds every value. key_value_default may be key_value_buf.
 *
 * Returns the number of characters stored, without the terminator that is always there: 0 for a key with an
 * empty value. A null or empty section_name, key_name or Ini_file, a null buffer and a size of 0 give 0 and
 * leave the buffer as it was.
 */
VINTRA_API uint32 GetConfigFileString(const sint8* section_name, const sint8* key_name,
                                      const sint8* key_value_default, sint8* key_value_buf,
                                      uint32 value_buf_size, const sint8* Ini_file);

/*
 * Returns the value of a key as atoi reads it: the digits behind an optional sign, 0 without any, the low 32
 * bits of the number on a machine whose long has 64. Returns key_value_default when that is negative, when
 * the value is empty, when GetConfigFileString would give its default, and for a null or empty text. A
 * negative default is there again once the result is cast to sint32.
 */
VINTRA_API uint32 GetConfigFileInt(const sint8* section_name, const sint8* key_name, sint32 key_value_default,
                                   const sint8* Ini_file);

/*
 * Lists the names of all sections in the order of the file, or the keys of the first section of a name. Each
 * name is followed by a NUL, and the last one by one more: "a", NUL, "bb", NUL, NUL. A name that occurs twice
 * is listed twice. A buffer of the file's size plus 2 bytes holds every list.
 *
 * Returns the bytes of the list without the last NUL, 5 in the example. The list, with that NUL, is always
 * shorter than the buffer, and ends early at a name with which it would not be. It also ends at a malformed
 * line (of a section, or of a key in the section that is listed), at a joined line of more than 4096 bytes
 * and at a read error. Where there is nothing to list, the file cannot be opened or an argument is null,
 * empty or below 1, the result is 0 and the buffer is left as it was.
 *
 * Sections are found by their lines alone: a line that continues a value and looks like a section is both,
 * for listing, reading and writing.
 */
VINTRA_API sint32 GetConfigFileSections(sint8* sections, sint32 sections_size, const sint8* Ini_file);
VINTRA_API sint32 GetConfigFileKeys(const sint8* section, sint8* keys, sint32 keys_size,
                                    const sint8* Ini_file);

/*
 * Writes a key as "name=value", a text or a decimal number. A file or section that is missing is made, the
 * section at the end of the file, with an LF before it; folders of Ini_file that are missing are made
 * as CreateMulDir makes them. A key that is there keeps its place, its lines becoming one; a new key stands
 * first in its section.
 *
 * Every other byte stays as it is, but for line ends: each becomes LF, and CR LF two of them. A form feed or
 * substitute at the end of a line gets an LF behind it, each time. The changed file is a new one, of the
 * caller's and with the mode 0600 whatever the old one's was, that takes the place and the name of the old
 * one, or of a link to it, in one step, once it is whole and on the disk. A file that is only appended to
 * stays the same one, is made with the mode 0666 less the umask, and is on the disk too. Where writing fails
 * the old content stays (of a new file nothing, though the file may be there), and an unfinished file
 * "Ini_temp_XXXXXX", with any six characters at its end, may stay beside it. Where only the folder cannot be
 * brought to the disk, the new file is there and counts as written, but a crash of the machine may bring the
 * old one back. Where the file system knows no syncing, files count as written without it.
 *
 * Returns 1 when the key is written, else 0:
 *   a null or empty text; the empty value cannot be written
 *   a key_name that holds one of the five signs or a line end, or has blanks at its ends, and so would not be
 *   found again
 *   a line of more than 4096 characters, which could not be read back as one
 *   an Ini_file without a name before its last '.' ("folder/", ".ini"), or of more than 259 characters, 257
 *   when it is relative, or whose folder has more than 248 (246) characters or cannot be made
 *   a file that is there and cannot be opened for reading, or is malformed before the key
 *   a file that cannot be written, or not be brought to the disk; for a changed key its folder's permission
 *   decides, for an appended section its own
 *
 * Folders are made with '/' where Ini_file has '\'; its last component is the file's name with any '\' in
 * it, as reading takes it.
 *
 * Section and value are written as they are, and are the caller's to check. A line end in them makes lines of
 * its own, which may be malformed and hide what is behind them; a value that ends in the connect sign takes
 * the next line for its own, and blanks at its ends are lost. A negative number reads as absent.
 */
VINTRA_API BOOL WriteConfigFileString(const sint8* section_name, const sint8* key_name,
                                      const sint8* key_value_buf, const sint8* Ini_file);
VINTRA_API BOOL WriteConfigFileInt(const sint8* section_name, const sint8* key_name, sint32 key_value,
                                   const sint8* Ini_file);

#ifdef __cplusplus
}
#endif

#endif
