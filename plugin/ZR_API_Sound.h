// The system's alert sound.
#ifndef ZR_API_SOUND_H
#define ZR_API_SOUND_H

void ZR_Beep();  // the bell of the terminal, if standard error is one

#endif
