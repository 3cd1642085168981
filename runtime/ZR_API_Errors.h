// Every error of the runtime: its number and its words. A message is one to five pieces that SetError joins; a row
// holds the piece before an inserted name or number, the one behind it, and so on. Numbers -49 to -53 carry no words
// and are stored straight into lastError. There is no -33.
#ifndef ZR_API_ERRORS_H
#define ZR_API_ERRORS_H

struct ZR_ErrorWords {
    long number;
    const char* before;  // the whole text where nothing is inserted
    const char* behind;  // after the first insertion; null = nothing
    const char* third;   // after the second insertion
};

inline constexpr ZR_ErrorWords kErrorComparisonCount = {-1, "Comparison with more than two values is not allowed", 0,
                                                        0};
inline constexpr ZR_ErrorWords kErrorDivisionByZero = {-2, "Division by zero", 0, 0};
inline constexpr ZR_ErrorWords kErrorNothingToAssignTo = {-3, "Syntax Error: Could not make assignment!", 0, 0};
inline constexpr ZR_ErrorWords kErrorNotAssignable = {-4, "No variable/field to assign", 0, 0};
inline constexpr ZR_ErrorWords kErrorUndefinedAssignment = {-5, "Undefined assignment variable type", 0, 0};
inline constexpr ZR_ErrorWords kErrorPointerToNothing = {-6, "Pointer points to nothing!", 0, 0};
inline constexpr ZR_ErrorWords kErrorPointerExpression = {-6, "Invalid Pointer Expression!", 0, 0};
inline constexpr ZR_ErrorWords kErrorPointerToTable = {-7, "Pointer to an invalid Table!", 0, 0};
inline constexpr ZR_ErrorWords kErrorPointerToField = {-8, "Pointer to an invalid Field!", 0, 0};
inline constexpr ZR_ErrorWords kErrorPointerToVariable = {-9, "Pointer to an invalid Variable!", 0, 0};
inline constexpr ZR_ErrorWords kErrorInvalidType = {-10, "Syntax error: Invalid type", 0, 0};
inline constexpr ZR_ErrorWords kErrorNoObjectRef = {-10, "Syntax error: No Object Ref", 0, 0};
inline constexpr ZR_ErrorWords kErrorVariableType = {-10, "Variable \"", "\" has incorrect type!", 0};
inline constexpr ZR_ErrorWords kErrorFindInArray = {-10, "Find in array does not work with this type. Variable \"",
                                                    "\".", 0};
inline constexpr ZR_ErrorWords kErrorFirstParameterType = {-10, "Invalid type in Parameter 1", 0, 0};
inline constexpr ZR_ErrorWords kErrorMustBeLongintArray = {-10, "Variable \"", "\" must be an ARRAY LONGINT", 0};
inline constexpr ZR_ErrorWords kErrorVariableNotFound = {-11, "Variable \"", "\" not found!", 0};
inline constexpr ZR_ErrorWords kErrorNoPointer = {-12, "The Variable \"", "\" is no pointer!", 0};
inline constexpr ZR_ErrorWords kErrorNotSupported = {-13, "Command \"", "\" not supported", 0};
inline constexpr ZR_ErrorWords kErrorWrongCount = {-13, "Command \"", "\" wrong count of parameters", 0};
inline constexpr ZR_ErrorWords kErrorWrongType = {-13, "Command \"", "\" wrong parameter type", 0};
inline constexpr ZR_ErrorWords kErrorUnknownVariable = {-14, "Unknown Variable \"", "\"", 0};
inline constexpr ZR_ErrorWords kErrorUnknownLoopVariable = {-14, "Unknown variable", 0, 0};
inline constexpr ZR_ErrorWords kErrorUnknownHostVariable = {-14, "Unknown 4D-Variable \"", "\"", 0};
inline constexpr ZR_ErrorWords kErrorNotAPointer = {-14, "Variable \"", "\" is not a pointer", 0};
inline constexpr ZR_ErrorWords kErrorPointerParameter = {-14, "Pointer to variables not supported: \"", "\"", 0};
inline constexpr ZR_ErrorWords kErrorUnknownPointer = {-14, "Unknown Pointer \"", "\"", 0};
inline constexpr ZR_ErrorWords kErrorEndIf = {-15, "End If expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorEndFor = {-16, "End For expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorFor = {-17, "For expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorRepeat = {-18, "Repeat expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorEndWhile = {-19, "End While expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorWhile = {-20, "While expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorEndCaseNoBranch = {-21, "End Case expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorEndCaseAfterBranch = {-21, "End case expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorCaseCondition = {-22, "Wrong Case Statement Line #", "", 0};
inline constexpr ZR_ErrorWords kErrorEmptyLeft = {-23, "Empty comparison (left)", 0, 0};
inline constexpr ZR_ErrorWords kErrorEmptyRight = {-24, "Empty comparison (right)", 0, 0};
inline constexpr ZR_ErrorWords kErrorComparisonType = {-25, "Wrong type in comparison", 0, 0};
inline constexpr ZR_ErrorWords kErrorComparisonImpossible = {-26, "Comparison not possible!", 0, 0};
inline constexpr ZR_ErrorWords kErrorWrongIf = {-27, "Wrong If-Statement", 0, 0};
inline constexpr ZR_ErrorWords kErrorWrongWhile = {-28, "Wrong While-Statement", 0, 0};
inline constexpr ZR_ErrorWords kErrorWrongUntil = {-29, "Wrong Repeat/Until-Statement", 0, 0};
inline constexpr ZR_ErrorWords kErrorWrongFor = {-30, "Wrong For/End For-Statement", 0, 0};
inline constexpr ZR_ErrorWords kErrorSetNotFound = {-31, "Set \"", "\" not found!", 0};
inline constexpr ZR_ErrorWords kErrorSetsOfOtherTables = {-31, "These sets have to be from the same table!", 0, 0};
inline constexpr ZR_ErrorWords kErrorFormula = {-32, "Formula not supported!", 0, 0};
inline constexpr ZR_ErrorWords kErrorArrayAccess = {-34, "Array access error", 0, 0};
inline constexpr ZR_ErrorWords kErrorArrayIndex = {-35, "Array index must be a number", 0, 0};
inline constexpr ZR_ErrorWords kErrorStringIndex = {-35, "String index must be a number", 0, 0};
inline constexpr ZR_ErrorWords kErrorArrayBounds = {-36, "Array access \"",
                                                    "\" not possible. Index: ", " Array size: "};
inline constexpr ZR_ErrorWords kErrorStringBounds = {-36, "String access \"",
                                                     "\" not possible. Index: ", " String size: "};
inline constexpr ZR_ErrorWords kErrorWriteBack = {-37, "The Variable \"", "\" could not set. Wrong type.", 0};
inline constexpr ZR_ErrorWords kErrorUnknownField = {-38, "Unknown Field: Table: ", ", Field: ", ""};
inline constexpr ZR_ErrorWords kErrorFieldType = {-38, "Field has incorrect type: Table: ", ", Field: ", ""};
inline constexpr ZR_ErrorWords kErrorInvalidQuery = {-39, "Invalid Query", 0, 0};
inline constexpr ZR_ErrorWords kErrorNotAnArray = {-40, "Variable is not an array \"", "\"", 0};
inline constexpr ZR_ErrorWords kErrorNoArray = {-40, "Variable \"", "\" is not an array!", 0};
inline constexpr ZR_ErrorWords kErrorClosedBracket = {-41, "Closed Bracket expected", 0, 0};
inline constexpr ZR_ErrorWords kErrorEvenCount = {-42, "Need an even count of parameters!", 0, 0};
inline constexpr ZR_ErrorWords kErrorFieldExpected = {-43, "A field was expected!", 0, 0};
inline constexpr ZR_ErrorWords kErrorVariableExpected = {-44, "A variable was expected!", 0, 0};
inline constexpr ZR_ErrorWords kErrorTableNumber = {-45, "Invalid Table No.: ", "", 0};
inline constexpr ZR_ErrorWords kErrorOneTableNumber = {-45, "Invalid One-Table No.: ", "", 0};
inline constexpr ZR_ErrorWords kErrorManyTableNumber = {-45, "Invalid Many-Table No.: ", "", 0};
inline constexpr ZR_ErrorWords kErrorInvalidTable = {-45, "Invalid Table!", 0, 0};
inline constexpr ZR_ErrorWords kErrorParametersExpected = {-46, "Parameters expected!", 0, 0};
inline constexpr ZR_ErrorWords kErrorPairFieldType = {-47, "Invalid field type in pair ", ".", 0};
inline constexpr ZR_ErrorWords kErrorFieldNotAssignable = {
    -47, "Assignment not possible. Field has incorrect type: Table: ", ", Field: ", ""};
inline constexpr ZR_ErrorWords kErrorVariableForField = {-48, "Variable type is not good for this field type \"", "\"",
                                                         0};
inline constexpr ZR_ErrorWords kErrorFieldNumber = {-54, "Invalid Field No.: ", ",", ""};
inline constexpr ZR_ErrorWords kErrorNotAllowed = {-55, "Command \"", "\" is not allowed", 0};
inline constexpr ZR_ErrorWords kErrorNotThreadSafe = {-56, "Command \"", "\" is not thread safe", 0};
inline constexpr ZR_ErrorWords kErrorNoObjectVariable = {-57, "Object variable not found!", 0, 0};
inline constexpr ZR_ErrorWords kErrorVariableIsNoObject = {-58, "Variable is no object!", 0, 0};
inline constexpr ZR_ErrorWords kErrorObjectNull = {-59, "Object cannot be null", 0, 0};
inline constexpr ZR_ErrorWords kErrorMemberFunctions = {
    -60, "Executing member functions are supported from 4D v17R6 only.", 0, 0};
// Guards: what a described step would do without end or bound.
inline constexpr ZR_ErrorWords kErrorTooDeep = {-61, "Too many nested calls", 0, 0};
inline constexpr ZR_ErrorWords kErrorTimeLimit = {-62, "Time limit reached", 0, 0};
inline constexpr ZR_ErrorWords kErrorMemory = {-63, "Not enough memory", 0, 0};

// Numbers without words, stored into lastError by the command surface.
inline constexpr long kErrorArrayKindDiffers = -49, kErrorKindNotTaken = -50, kErrorNoVirtualEntry = -51,
                      kErrorMethodExists = -52, kErrorMethodUnknown = -53;

#endif
