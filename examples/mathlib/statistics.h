/* Integer statistics over small sets of samples. */
#ifndef STATISTICS_H
#define STATISTICS_H

#ifdef __cplusplus
extern "C" {
#endif

/* The sum of the first `count` values. */
long statistics_sum(const int *values, int count);
/* The mean of the first `count` values, in thousandths; 0 for no values. */
long statistics_mean_milli(const int *values, int count);
/* The largest of the first `count` values; 0 for no values. */
int statistics_maximum(const int *values, int count);

#ifdef __cplusplus
}
#endif

#endif
