// What the header made from the interface description includes for the automation
// types.
#include <ole2.h>
