/* What header_c.c, a host in C, tells its test. */
#ifndef HEADER_C_H
#define HEADER_C_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TCAnswer {
  int status[6]; /* of each call, in order */
  double area[2];
  double value[2];
} TCAnswer;

/* The sums of two regions of a unit square, called from C. */
TCAnswer call_FromC(void);

/* Sets a parameter of each type from C; the sum of the statuses. */
int set_FromC(void);

#ifdef __cplusplus
}
#endif

#endif
