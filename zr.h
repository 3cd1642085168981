// The library in one include. A program that brings its own host needs nothing else; the embedded host is host/Host.h.
#ifndef ZR_H
#define ZR_H

#include "core/ZR_API_AtomicHandle.h"
#include "core/ZR_API_BLOBArray.h"
#include "core/ZR_API_Color.h"
#include "core/ZR_API_Date.h"
#include "core/ZR_API_Geometry.h"
#include "core/ZR_API_Handle.h"
#include "core/ZR_API_Picture.h"
#include "core/ZR_API_Text.h"
#include "core/ZR_API_TextArray.h"
#include "language/ZR_API_CodeStyle.h"
#include "language/ZR_API_Executer.h"
#include "language/ZR_API_Token.h"
#include "language/ZR_API_TokenBlob.h"
#include "language/ZR_API_TokenList.h"
#include "language/ZR_API_Tokeniser.h"
#include "language/ZR_API_VirtualStructure.h"
#include "plugin/ZR_API_Bridge.h"
#include "plugin/ZR_API_Numbers.h"
#include "plugin/ZR_API_Plugin.h"
#include "plugin/ZR_API_Sound.h"
#include "plugin/ZR_API_Telephony.h"
#include "plugin/ZR_HostInterface.h"
#include "runtime/ZR_API_Context.h"
#include "runtime/ZR_API_Errors.h"
#include "runtime/ZR_API_Guards.h"
#include "runtime/ZR_API_Method.h"
#include "runtime/ZR_API_VariableIndex.h"
#include "runtime/ZR_API_Variables.h"

#endif
