/* The C++ part of the example, as C sees it. */
#ifndef SHAPES_H
#define SHAPES_H

#ifdef __cplusplus
extern "C" {
#endif

/* Prints the shapes that static constructors registered; returns how many there are. */
int shapes_report(void);

#ifdef __cplusplus
}
#endif

#endif
