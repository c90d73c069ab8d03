#include "core/Main.h"

// On Linux the desktop hands over nothing but the command line, so the entry goes straight on.
int main(int argc, char** argv)
{
    return SDL_main(argc, argv);
}
