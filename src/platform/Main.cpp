// The desktop layer hands the command line to the program's entry, which the shell defines above this
// layer. On Linux the desktop hands over nothing else, so the entry goes straight on.
extern "C" int SDL_main(int argc, char** argv);

int main(int argc, char** argv)
{
    return SDL_main(argc, argv);
}
