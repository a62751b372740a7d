#pragma once

class Clock;
class EventPump;
class FileDialogs;
class Folders;
class FontDialogs;
class Ids;
class Instance;
class Message;
class Printers;
class SharedBlocks;
class Shell;
class Sockets;
class Sound;
class Timers;

/// The services of the system, as the program's parts get them. The owner outlives every part.
struct Ports
{
    EventPump &pump;
    Timers &timers;
    Clock &clock;
    Ids &ids;
    Message &message;
    Folders &folders;
    Shell &shell;
    Sound &sound;
    SharedBlocks &blocks;
    Instance &instance;
    Sockets &sockets;
    FileDialogs &fileDialogs;
    FontDialogs &fontDialogs;
    Printers &printers;
};
