/*
 * Three logs of one program, each as a section of one INI file says.
 *
 *   vintra_three_logs INI_FILE    (see three_logs.ini)
 */
#include <VintraModule/VintraModule.h>
#include <stdio.h>

static const char* const kNames[] = {"net", "audit", "trace"};
enum { kNet, kAudit, kTrace, kLogs };

static int failures = 0;

static void Check(int log, const char* what, sint32 code) {
  if (code == 0) return;
  fprintf(stderr, "log [%s]: %s (code %d)\n", kNames[log], what, (int)code);
  ++failures;
}

int main(int argc, char** argv) {
  LOGHANDLE logs[kLogs] = {null_log_handle, null_log_handle, null_log_handle};
  int log, i;

  if (argc != 2) {
    fprintf(stderr, "usage: %s INI_FILE\n", argv[0]);
    return 2;
  }
  for (log = 0; log < kLogs; ++log) {
    Check(log, "could not be opened", LOG_MODULE_INIT(argv[1], kNames[log], &logs[log]));
    /* A section or level that is missing is no failure: such a log just drops every record. */
    if (logs[log] != null_log_handle && LOG_LEVEL(logs[log]) == Log_Level_Disable) {
      fprintf(stderr, "log [%s]: is switched off\n", kNames[log]);
      ++failures;
    }
  }

  /* A log that could not be opened refuses its records (1), and the others go on. */
  Check(kNet, "refused a record", LOG_INFO(logs[kNet], "listening on port %d", 8080));
  Check(kAudit, "refused a record", LOG_NOTICE(logs[kAudit], "%s has logged in", "ann"));
  for (i = 1; i <= 3; ++i) Check(kTrace, "refused a record", LOG_TRACE(logs[kTrace], "step %d", i));
  Check(kNet, "refused a record", LOG_DEBUG(logs[kNet], "below the level of [net], and so not written"));

  for (log = 0; log < kLogs; ++log) {
    if (logs[log] != null_log_handle) Check(log, "could not be flushed", LOG_MSG_FLUSH(logs[log]));
    LOG_MODULE_DESTORY(&logs[log]);
  }
  return failures == 0 ? 0 : 1;
}
