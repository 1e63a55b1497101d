/* What the compiler's start files (crti, crtbegin, crtn) would give a program. The link runs
   without them, so the C library carries these. */

/* The handle that static destructors are registered under; 0 in a program without shared
   objects. */
void *__dso_handle = 0;

/* The C library's init and fini hooks; the start-up code runs the constructor table itself. */
void _init(void)
{
}

void _fini(void)
{
}
