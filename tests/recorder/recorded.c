/* An application for the recorder to stand before. usage: recorded WHAT */
#include <bcm/vlan.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

int sdk_main(int argc, char** argv);
int system_init(int unit);

static void start(void) {
  sdk_main(0, NULL);
  system_init(0);
}

static void* add_port(void* port) {
  bcm_pbmp_t members = {{0}};
  bcm_pbmp_t untagged = {{0}};
  int i;
  BCM_PBMP_PORT_ADD(members, *(int*)port);
  for (i = 0; i < 1000; ++i) bcm_vlan_port_add(0, 1, members, untagged);
  return NULL;
}

/* Four threads that call at the same time. */
static void call_from_threads(void) {
  pthread_t threads[4];
  int ports[4] = {1, 2, 3, 4};
  int i;
  for (i = 0; i < 4; ++i) pthread_create(&threads[i], NULL, add_port, &ports[i]);
  for (i = 0; i < 4; ++i) pthread_join(threads[i], NULL);
}

/* As daemons do: the parent exits, its child goes on. */
static void go_on_in_child(void) {
  const pid_t child = fork();
  if (child == 0) {
    bcm_vlan_create(0, 20);
    exit(0);
  }
  waitpid(child, NULL, 0);
}

/* What the system log gets goes to standard error. */
void __syslog_chk(int priority, int flag, const char* format, ...);
void __syslog_chk(int priority, int flag, const char* format, ...) {
  va_list arguments;
  (void)flag;
  fprintf(stderr, "<%d> ", priority);
  va_start(arguments, format);
  vfprintf(stderr, format, arguments);
  va_end(arguments);
  fputc('\n', stderr);
}

int main(int argc, char** argv) {
  const char* const what = argc > 1 ? argv[1] : "";
  if (strcmp(what, "nothing") == 0) return 0;
  start();
  if (strcmp(what, "lacking") == 0) printf("%d\n", bcm_vlan_create(0, 10));
  if (strcmp(what, "threads") == 0) call_from_threads();
  if (strcmp(what, "fork") == 0) {
    bcm_vlan_create(0, 10);
    go_on_in_child();
  }
  while (strcmp(what, "forever") == 0) bcm_vlan_create(0, 10);
  return 0;
}
