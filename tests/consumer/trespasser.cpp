// Does not compile: the header is the library's own.
#include <torva35/TORVA35.h>
#include <torva35/errors/Reported.h>
