#include <tessarium/tessarium.h>
