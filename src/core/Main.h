#pragma once

// The program: start-up, the frame loop and shut-down in order. Never returns; it ends the process itself,
// with 0 after an orderly end, 1 after an error and 2 after an unknown failure.
extern "C" int SDL_main(int argc, char** argv);

// Opens the scene a run starts with when the command line names none: the scene autosaved by a run that
// died, else the one saved at the last orderly end, else the welcome scene; nothing if none of them exists.
void LoadScene();
