#pragma once

/* What a host has, for a program in C. Failures are printed; those that can be gone on after are told by the return value. */
#ifdef __cplusplus
extern "C" {
#endif

void host_begin(int argc, char **argv);
/* Zero when Kelvara1, which lies beside the program, cannot be loaded. */
int host_load(void);
void host_unload(void);
void *host_application(void);
void *host_screen(void);
void *host_connection(void);
/* Of the last message box, in UTF-8. */
const char *host_last_message(void);

#ifdef __cplusplus
}
#endif
