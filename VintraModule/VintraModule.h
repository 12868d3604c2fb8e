/*
 * Vintra's log module: log handles, their configuration and the functions that write records.
 *
 * A program opens a handle on one folder and one base name, writes printf-style records of eight levels
 * through it from any thread, and destroys it at the end:
 *
 *   LogConfigRecEx config = {0};
 *   LOGHANDLE log = null_log_handle;
 *   strcpy(config.log_file_name, "/var/log/app/app.log");
 *   config.log_mode = Log_Mode_Simple;
 *   config.log_level = Log_Level_Info;
 *   config.max_file_size = 1024 * 1024;
 *   strcpy(config.log_format, "%D%T%E%N");
 *   if (LOG_MODULE_INIT_New_Ex(&config, &log) == 0) LOG_INFO(log, "listening on port %d", port);
 *   LOG_MODULE_DESTORY(&log);
 *
 * Result codes of every function that returns sint32
 *    0  success; also a record below the handle's threshold, which is dropped
 *    1  invalid argument or handle, or a record for a handle that has no open file
 *    2  out of memory, or a message that no buffer can hold
 *    4  the log folder could not be made
 *    5  a log file could not be opened or emptied, its path exceeds 259 characters, or its size is unreadable
 *    7  writing or flushing the log file failed, as on a full disk: nothing of the record is in the file, or
 *       only its beginning. Those accepted before are kept until they can be written, or the log is destroyed
 *    9  the library's folder joined with the folder of a relative name exceeds 259 characters; or an argument
 *       of LOG_MODULE_INIT, or what it has read, is invalid
 *   10  a header field of a record could not be formatted
 *   12  the clock could not be read
 *   13  the host name or the system's identification could not be read
 *
 * Start-up, records and flushes that fail with 4, 5, 7 or 10 are also described in the library's own file
 * LogModuleErrMsg.log, one line each, in the folder of the library's file, and so are most keys of a log
 * section that take their defaults. Of 1, 2 and 9 some are, 12 and 13 are not. Where that file cannot be
 * written, or its path exceeds 255 characters, these lines are lost and nothing else changes.
 *
 * Texts are NUL-terminated bytes of any encoding. The widths of text fields are in bytes and include the
 * terminator; a field without a terminator is read to its width and not beyond.
 *
 * Ownership: the host owns its LOGHANDLE variable and all texts it passes, which are copied or used up before
 * the call returns. The library owns what the handle stands for, until LOG_MODULE_DESTORY.
 *
 * Threads: the library starts none. Handles may be opened in any number of threads at once. Through one
 * handle any number of threads may call everything but LOG_MODULE_DESTORY at once; records never interleave.
 * Handles do not wait for each other. Two handles, or two processes, on one folder and base name are not
 * coordinated. Flush before fork, as unflushed records exist in both processes after it; a child of a process
 * with several threads calls nothing of this library. Stop logging in other threads before exit. No call is
 * for signal handlers, nor for the constructors of a library that dlopen is loading.
 *
 * Files are opened close-on-exec and in append mode, so that another program may truncate or append to one.
 * They never get the descriptors 0, 1 and 2, also where the host has closed these. Sizes are 32-bit: a log
 * file is meant to stay below 2 GiB.
 */
#ifndef VINTRA_VINTRAMODULE_VINTRAMODULE_H
#define VINTRA_VINTRAMODULE_VINTRAMODULE_H

#include "../Common/BaseTypes.h"

#define VINTRA_PATH_SIZE 260 /* bytes of a path field */
#define VINTRA_TEXT_SIZE 64  /* bytes of every other text field */

/* A handle on one log, or null_log_handle. Copies name the same log and die with it. */
typedef int64_t LOGHANDLE;
#define null_log_handle INT64_C(0)

/* The level of a record, and the threshold of a handle: a record is written when its level is at least the
 * handle's. */
typedef enum LogLevel VINTRA_ENUM_BASE {
  Log_Level_Trace = 1,
  Log_Level_Debug = 2,
  Log_Level_Info = 3,
  Log_Level_Notice = 4,
  Log_Level_Warn = 5,
  Log_Level_Error = 6,
  Log_Level_Crit = 7,
  Log_Level_Fatal = 8,
  Log_Level_Disable = 9 /* as a threshold: no folder is made, no file opened, every record dropped */
} LogLevel;

/*
 * How the files of a log grow, here for "app.log" and a max_backup_index of 20. Numbers have at least three
 * digits.
 *
 * Simple: one file, app.log. Start-up appends to it, or empties one at or above max_file_size. The first
 * record after it has reached max_file_size empties it.
 *
 * Rollback: a ring of 20 files, app000.log to app019.log. Start-up goes on in the first of them that is below
 * max_file_size; when all are at or above it, app000.log is emptied. The first record after the file has
 * grown beyond max_file_size (by one byte or more) empties the next file of the ring and goes there; behind
 * the last file stands the first. With a max_backup_index of 0 numbers never wrap; start-up then takes
 * file 000 even if that is full, so that a restart empties the files of before one by one.
 *
 * Date: files per local day, app_20261116_000.log to app_20261116_019.log for 16 November 2026, each day's a
 * ring of its own, at start-up too. The first record of another day goes to that day's file 000, emptied; the
 * day of a record is the one it is stamped with. Setting the clock back across midnight by more than a
 * second, or the time zone west, therefore starts the earlier day's file 000 over. A log that is not written
 * to keeps its file.
 *
 * Retention: where log_time_span is not 0, the date mode removes the log's files of days that lie
 * log_time_span days back or more, at start-up and whenever it moves on to another file. With 7 the files of
 * today and of the six days before stay. A file is the log's when its name is the base name, a character,
 * eight digits, four characters and the extension: a number of four digits is not matched, and another log of
 * the same name is; so is a folder with such a name, which goes if it is empty. In the first hour or two of a
 * day in summer time ages count one day less. Records through the handle wait for the pass. It ends, without
 * a report, at what cannot be removed, such as a folder that is not empty; the next pass tries again. A log
 * that cannot move on for want of room repeats it every quarter of an hour. In the folder "/" nothing is
 * matched.
 *
 * Without a usable clock the date mode neither starts up nor writes a record, and keeps its file: 12.
 */
typedef enum LogMode VINTRA_ENUM_BASE {
  Log_Mode_Simple = 1,
  Log_Mode_Rollback = 2,
  Log_Mode_Date = 3
} LogMode;

/* What LOG_MODULE_INIT_Ex needs to know: 348 bytes. Clear the record, then fill it. */
typedef struct LogConfigRec {
  /* Folder, base name and extension, for example "/var/log/app/app.log". A name that does not begin with '/'
   * is placed under the folder of this library's own file, not under the working directory; a library loaded
   * by a relative path has a relative folder, which follows chdir. The folder, up to 248 characters with the
   * '/' behind it, is made if it is missing; '\' separates components like '/'. Base name and extension (from
   * its '.' on) have up to 63 characters each, and a longer one is refused: cut, it could name another log's
   * file. The path of every file has up to 259 characters, with the date and number that the mode adds. */
  sint8 log_file_name[VINTRA_PATH_SIZE];
  LogMode log_mode;
  LogLevel log_level; /* the threshold, fixed for the handle's life */
  /* Size limit of a log file in bytes, at least 1. What is above 2147483647 means 2147483647, the largest
   * that there is. A record is always written whole, so a file may end one record above its limit. */
  uint32 max_file_size;
  uint32 max_backup_index; /* files of a ring or day, 0 for no end; the simple mode does not use it */
  /* Flush when this many bytes are unflushed. 0 flushes after every record, which is then safe from the death
   * of the process; otherwise a killed process loses at most this many bytes and one record. */
  uint32 file_flush_size;
  uint32 log_time_span; /* days that the date mode keeps its files, 0 for ever; other modes do not use it */
  /* The pieces of each line, as directives: '%', any number of spaces, and a capital letter. Other text is
   * ignored. Whatever the order of the directives, a line has its pieces in this order:
   *
   *   %N  CR LF before every record but the first of a file, so that the file itself ends without one
   *   %D  the local date, "2026-11-16 "
   *   %T  the local time, "13:24:14.007 "
   *   %E  the level tag, "[INFO]  "
   *       the module name and two blanks, always
   *   %F  the source file that SourceInfo stored, if any: "[main.c] "
   *   %L  the source line that SourceInfo stored, if any: "[42] "
   *       the message
   *
   *   %C  adds nothing to the line: start-up empties the file instead of appending to it, and takes the file
   *       000 where files are numbered
   *
   * An empty format means "%N". */
  sint8 log_format[VINTRA_TEXT_SIZE];
} LogConfigRec;

/* What LOG_MODULE_INIT_New_Ex needs to know: 548 bytes. Clear the record, then fill it; the fields that it
 * shares with LogConfigRec mean the same. */
typedef struct LogConfigRecEx {
  sint32 size_LogConfigRecEx; /* size of this record in bytes; not examined */
  sint8 log_file_name[VINTRA_PATH_SIZE];
  LogMode log_mode;
  LogLevel log_level;
  uint32 max_file_size;
  uint32 max_backup_index;
  uint32 file_flush_size;
  uint32 log_time_span;
  sint8 log_format[VINTRA_TEXT_SIZE];
  /* Directives of two banners, which start-up writes as its first records, of the level Trace: under a higher
   * threshold they are dropped. Written as in log_format; an empty text means "%N".
   *
   *   sysconf_format  %N no system banner, whatever else is there
   *                   %O the system's name, host name, hardware, release and version
   *                   %C the processor's name, and for the cores the lines of /proc/cpuinfo divided by 19
   *                   %M the size of the memory, and of the file system of "/" in MiB
   *   PidandTid       %N no process banner, whatever else is there
   *                   %P the process identifier: "[ 4242 ]"
   *                   %T the identifier of the thread that calls start-up: "[ 4242  4243 ]" with both
   *
   * A text without any of these still makes a record, of three line feeds or of "[]". What cannot be read is
   * left out, but for the host name and the system's identification (13). */
  sint8 sysconf_format[VINTRA_TEXT_SIZE];
  sint8 PidandTid[VINTRA_TEXT_SIZE];
  /* Written into every line, may be empty. A name without a terminator is cut to 63 characters, with a line
   * in the error log. */
  sint8 module_name[VINTRA_TEXT_SIZE];
  /* 1 scrambles every byte of the log files: XOR with 0x3C, and the same again gives the text back. This
   * keeps casual readers out and protects no secret. Any other value writes plain text. */
  uint32 log_encrypt;
} LogConfigRecEx;

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Opens a log as a_log_config says, scrambled, without banners and without a module name, and stores its
 * handle in *a_log_handle. The record is only read, and may be released after the call.
 *
 * Returns
 *   0  *a_log_handle holds a live handle, to be destroyed with LOG_MODULE_DESTORY
 *   1  a null argument, a max_file_size of 0, an empty log_file_name or base name, a base name or extension
 * of more than 63 characters, a level outside 1 to 9, or a mode outside 1 to 3 2, 4, 5, 9  as listed at the
 * top 12  the date mode has no usable clock After any but 0 no handle exists, and *a_log_handle is as it was.
 */
VINTRA_API sint32 LOG_MODULE_INIT_Ex(const LogConfigRec* a_log_config, LOGHANDLE* a_log_handle);

/* Opens a log like LOG_MODULE_INIT_Ex, but scrambled or not, with banners and with a module name as
 * a_log_config says. The results are the same, and those of a record (LOG_TRACE) or 13 when a banner fails:
 * then *a_log_handle is null_log_handle. */
VINTRA_API sint32 LOG_MODULE_INIT_New_Ex(const LogConfigRecEx* a_log_config, LOGHANDLE* a_log_handle);

/*
 * Opens a log as a section of an INI file says (see ConfigFileINI.h for its syntax), with these keys:
 *
 *   key               value                                              default
 *   file_name         log_file_name, up to 259 characters                default.log
 *   level             a name of LogLevel, as Log_Level_Info              Log_Level_Disable
 *   mode              a name of LogMode, as Log_Mode_Date                Log_Mode_Simple
 *   max_file_size     bytes, up to 2147483647                            20971520 (20 MiB)
 *   max_backup_index  files of a ring or day                             20
 *   flush_size        file_flush_size, bytes                             0
 *   format            log_format                                         %D%T%E%N
 *   time_span         log_time_span, days; read in the date mode         0
 *   SysConfFormat     sysconf_format                                     %N
 *   module_name       module_name, up to 63 characters                   none
 *   PidAndTid         PidandTid                                          %N
 *   encrypt           1 scrambles, 0 or anything else does not           1
 *
 * Names of levels and modes may be in any case. Numbers are read as GetConfigFileInt does, so that "10M" is
 * 10. A key that is missing, empty or of no use, and a number that is 0 or negative, take the default with a
 * line in the error log. Not so flush_size and encrypt: no line, and a 0 is taken. Nor format: it may be
 * empty, and reads as missing when it is "null". What the mode does not use is not read. So a file or section
 * that is missing makes a log whose threshold drops every record: see LOG_LEVEL.
 *
 * A file_name that ends in '/' or '\' is a folder and gets "default.log" behind it, one that ends in ':'
 * "/default.log"; where that exceeds 259 characters it is "default.log" alone. Formats are cut to 63.
 *
 * config_file counts from the working directory when it is relative; a relative file_name is placed under the
 * folder of this library's own file. A null text reads as "null". An empty one finds no key, and leaves the
 * format empty.
 *
 * Returns what LOG_MODULE_INIT_New_Ex does, but 1 for a null a_log_handle only, and 9 for every other invalid
 * argument: an empty base name, a base name or extension that is too long, and a config_file or section of
 * more than 263 characters.
 */
VINTRA_API sint32 LOG_MODULE_INIT(const sint8* config_file, const sint8* section, LOGHANDLE* a_log_handle);

/* Returns the handle's threshold, or Log_Level_Disable for a handle that is not live. Takes no lock. */
VINTRA_API LogLevel LOG_LEVEL(LOGHANDLE log_handle);

/* Flushes the handle's file to the system if anything was written since the last flush. Returns 0, also when
 * no file is open; 1 for a handle that is not live; 7 when the flush failed. What could not be written is
 * kept for the next flush that file_flush_size calls for. A second call does not try again, and returns 0. */
VINTRA_API sint32 LOG_MSG_FLUSH(LOGHANDLE log_handle);

/*
 * Stores a source position in the handle, where it stays until the next call: the base name and extension of
 * source_file_name, up to 63 characters, and source_file_line. %F and %L write it into every record. Written
 * inside a record call (see VINTRA_HERE) it names the place of that call.
 *
 * Returns log_handle, always. Stores nothing for a null or empty name, a line below 1 or a handle that is not
 * live. Takes no lock: where several threads store positions through one handle, a record may carry another
 * thread's position, or a name with characters of both, always terminated.
 */
VINTRA_API LOGHANDLE SourceInfo(LOGHANDLE log_handle, const sint8* source_file_name, sint32 source_file_line);

/* The handle, with this place in the host's source stored in it: LOG_INFO(VINTRA_HERE(log), "ready"). */
#define VINTRA_HERE(log_handle) SourceInfo((log_handle), __FILE__, __LINE__)

/*
 * Flushes and closes the handle's file, releases everything and sets *a_log_handle to null_log_handle. Waits
 * for a record that another thread is writing; the caller sees to it that no thread uses the handle any more.
 * A null pointer, null_log_handle and a record that is not live are ignored. When the last records cannot be
 * stored any more, only the error log says so: see LOG_MSG_FLUSH.
 */
VINTRA_API void LOG_MODULE_DESTORY(LOGHANDLE* a_log_handle);

/*
 * Scrambles the file oldFile into newFile, byte by byte with XOR 0x3C: a scrambled log becomes readable, and
 * any file scrambled. newFile is created, or emptied and overwritten. Both are paths as open takes them,
 * relative to the working directory. Needs no handle and keeps no state, so any thread may call it at any
 * time; a log that is being written is converted as far as it was flushed.
 *
 * Returns
 *   0  done, unless writing failed, as on a full disk: that ends the call with 0 too and only sets errno,
 *      which is otherwise left as it was
 *   1  a null argument
 *   5  oldFile cannot be opened or read, or is a folder; newFile cannot be created or emptied; both are the
 *      same file, by whatever names; or there is no memory for a buffer of 128 KiB. newFile is then as it
 *      was, unless reading failed on the way: it then has what was read before.
 */
VINTRA_API sint32 FileConvert(const sint8* oldFile, const sint8* newFile);

/*
 * Scrambles sourcelength bytes of sourceData into destData, in the way of FileConvert and from the last byte
 * to the first; NUL bytes are bytes like any other, and none is added. destData may be sourceData. Where the
 * two overlap otherwise, a destData behind sourceData receives the right bytes, and one before it those that
 * the order gives. *destDatalength says how many bytes destData has room for, and receives sourcelength.
 *
 * Returns 0, or 1 with destData unchanged: for a null argument, which changes nothing at all, or when there
 * is too little room, where *destDatalength then says how much is needed.
 */
VINTRA_API sint32 GetEncryptData(const sint8* sourceData, uint32 sourcelength, sint8* destData,
                                 uint32* destDatalength);

/*
 * Write one record of a level: format and its arguments as for printf, any length. The message stands in the
 * file as formatted, up to a NUL byte if it has one, with no line break added; "%m" gives the errno at the
 * call, which the call leaves unchanged.
 *
 * Return 0 when the record was written or is below the threshold; 1 for a null format, a handle that is not
 * live or one without an open file; 2, also for text that cannot be encoded; 5 when the next file could not
 * be opened, after which the handle stays without a file; 7, 10, 12, after which the next record may well
 * succeed. Except for the beginning that a failure of writing or flushing (7) may leave, nothing of a refused
 * record is in the file. A log that keeps records does not move on to its next file while the disk is full,
 * until as much has been refused as a file may hold; the next file, which moving on empties, goes first.
 *
 * Each function has a second name, vintra_info for LOG_INFO and so on, for sources that use <syslog.h> or
 * another header that makes the first one a macro. A plain name that is a macro already is not declared.
 */
#ifndef LOG_TRACE
VINTRA_API sint32 LOG_TRACE(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_DEBUG
VINTRA_API sint32 LOG_DEBUG(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_INFO
VINTRA_API sint32 LOG_INFO(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_NOTICE
VINTRA_API sint32 LOG_NOTICE(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_WARN
VINTRA_API sint32 LOG_WARN(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_ERROR
VINTRA_API sint32 LOG_ERROR(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_CRIT
VINTRA_API sint32 LOG_CRIT(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif
#ifndef LOG_FATAL
VINTRA_API sint32 LOG_FATAL(LOGHANDLE log_handle, const sint8* format, ...) VINTRA_PRINTF(2, 3);
#endif

#define VINTRA_LEVEL_ALIAS(alias, name) \
  VINTRA_API sint32 alias(LOGHANDLE log_handle, const sint8* format, ...) __asm__(name) VINTRA_PRINTF(2, 3)

VINTRA_LEVEL_ALIAS(vintra_trace, "LOG_TRACE");
VINTRA_LEVEL_ALIAS(vintra_debug, "LOG_DEBUG");
VINTRA_LEVEL_ALIAS(vintra_info, "LOG_INFO");
VINTRA_LEVEL_ALIAS(vintra_notice, "LOG_NOTICE");
VINTRA_LEVEL_ALIAS(vintra_warn, "LOG_WARN");
VINTRA_LEVEL_ALIAS(vintra_error, "LOG_ERROR");
VINTRA_LEVEL_ALIAS(vintra_crit, "LOG_CRIT");
VINTRA_LEVEL_ALIAS(vintra_fatal, "LOG_FATAL");
#undef VINTRA_LEVEL_ALIAS

#ifdef __cplusplus
}
#endif

#endif
