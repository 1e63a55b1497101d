#include "statistics.h"

long statistics_sum(const int *values, int count)
{
    long sum = 0;
    for (int i = 0; i < count; ++i)
        sum += values[i];
    return sum;
}

long statistics_mean_milli(const int *values, int count)
{
    return count > 0 ? statistics_sum(values, count) * 1000 / count : 0;
}

int statistics_maximum(const int *values, int count)
{
    int maximum = count > 0 ? values[0] : 0;
    for (int i = 1; i < count; ++i)
        if (values[i] > maximum)
            maximum = values[i];
    return maximum;
}
