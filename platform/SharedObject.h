// The shared objects that hold what needs a heavy library. Each lies beside libzr, is opened on first use and stays; a
// missing one makes the operations behind it answer neutrally. Safe from any thread.
#ifndef ZR_PLATFORM_SHAREDOBJECT_H
#define ZR_PLATFORM_SHAREDOBJECT_H

enum ZRSharedObject : int {
    kZRObjectGraphics = 0,  // drawing, image formats, text
    kZRObjectPDF = 1,       // PDF documents: pages, boxes, assembly
    kZRObjectPDFPaint = 2,  // painting pages of PDF documents
    kZRObjectSVG = 3,       // SVG pictures to pixels
    kZRObjectCount = 4
};

struct ZRSharedObjectState {
    const char* file;      // its name, "libzr-graphics.so"
    const char* purpose;   // what is missing without it, a few words
    const char* packages;  // the Debian packages that it needs at run time, separated by blanks
    bool available;        // opened, and of this version
    const char* problem;   // why not, the words of the loader; empty = available
};

// Opens the object if it was not tried before. [0..kZRObjectCount), null outside; lives as long as the process.
const ZRSharedObjectState* ZRSharedObjectGetState(int object);

// The table of the object's functions, of the type that its header names; null = missing. Opens it on first use.
const void* ZRSharedObjectGetTable(ZRSharedObject object);

// Where objects are looked for, instead of the folder of libzr; null = there again. Only before an object's first use.
void ZRSharedObjectSetFolder(const char* folder);

#endif
