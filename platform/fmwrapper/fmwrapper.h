// The database host's data interface: every operation that a plug-in may use on the host's values.
//
// The host's objects are opaque here and are reached only through the FM_ operations. Conventions:
//  - Objects made by a ..._Constructor belong to the caller, who gives them back to ..._Delete.
//    Pointers that other operations answer are borrowed: they belong to the object they were asked of and
//    are good until that object is changed or deleted.
//  - The last argument of each operation takes the host's status: 0 success, 1 out of memory, 2 any other
//    failure. An operation that fails changes nothing and answers a zero value.
//  - Positions and sizes of text are in UTF-16 code units, from 0. Sizes of streams are in bytes.
//  - Operations that also answer an FM_Error (0 success) set both.
//
// Values are not synchronised: one object, one thread at a time.
#pragma once

#include <cstdint>

struct FM_Text;
struct FM_Data;
struct FM_DataVect;
struct FM_FixPt;
struct FM_QuadChar;
struct FM_BinaryData;
struct FM_Locale;
struct FM_ExprEnv;

using FM_Status = std::int32_t;
using FM_Error = std::int16_t;

inline constexpr FM_Status kFM_StatusOk = 0;
inline constexpr FM_Status kFM_StatusNoMemory = 1;
inline constexpr FM_Status kFM_StatusFailed = 2;

/// Encodings of 8-bit text. The native code page of this host is UTF-8.
enum FM_Encoding : std::int32_t { kFM_EncodingNative = 0, kFM_EncodingUTF8 = 1, kFM_EncodingMacRoman = 4 };

/// Native types of a Data value.
enum FM_NativeType : std::int32_t {
    kFM_TypeInvalid = 0,
    kFM_TypeText = 1,
    kFM_TypeNumber = 2,
    kFM_TypeDate = 3,
    kFM_TypeTime = 4,
    kFM_TypeTimestamp = 5,
    kFM_TypeContainer = 6
};

/// Locale types: the host's enumeration, of which a plug-in needs English.
inline constexpr std::int32_t kFM_LocaleEnglish = 21;

/// What FM_Text_Find answers when nothing was found, and the size that means "to the end".
inline constexpr std::int32_t kFM_NotFound = -1;
inline constexpr std::int32_t kFM_ToEnd = -1;

/// Host error codes that this layer answers itself.
inline constexpr FM_Error kFM_ErrorNone = 0;
inline constexpr FM_Error kFM_ErrorReading = -36;
inline constexpr FM_Error kFM_ErrorOutOfMemory = -108;
inline constexpr FM_Error kFM_ErrorWrongParameter = -50;

/// Handler of an external function. The parameters and the environment belong to the host; the handler
/// writes its one result into `result` and answers an error code to the host.
using FM_ExternalFunction = FM_Error (*)(std::int16_t function_id, const FM_ExprEnv& environment,
                                         const FM_DataVect& parameters, FM_Data& result);

// ---- Text: Unicode text --------------------------------------------------------------------------------

FM_Text* FM_Text_Constructor1(FM_Status* status);
void FM_Text_Delete(FM_Text* text, FM_Status* status);
/// Replaces the contents by zero-terminated 8-bit text. Malformed bytes become U+FFFD.
void FM_Text_Assign(FM_Text* text, const char* bytes, FM_Encoding encoding, FM_Status* status);
void FM_Text_AssignWithLength(FM_Text* text, const char* bytes, std::int32_t length, FM_Encoding encoding,
                              FM_Status* status);
void FM_Text_AssignUnicode(FM_Text* text, const char16_t* units, FM_Status* status);
void FM_Text_AssignUnicodeWithLength(FM_Text* text, const char16_t* units, std::int32_t count,
                                     FM_Status* status);
std::int32_t FM_Text_GetSize(const FM_Text* text, FM_Status* status);
/// Writes `size` units from `position` (kFM_ToEnd: all that follow) as zero-terminated 8-bit text, cut to
/// the buffer at a character boundary. A slice that is cut in mid-pair gives U+FFFD for the half.
void FM_Text_GetBytes(const FM_Text* text, char* buffer, std::int32_t buffer_size, std::int32_t position,
                      std::int32_t size, FM_Encoding encoding, FM_Status* status);
/// Copies up to `size` units from `position`; no terminator is added.
void FM_Text_GetUnicode(const FM_Text* text, char16_t* buffer, std::int32_t position, std::int32_t size,
                        FM_Status* status);
void FM_Text_AppendText(FM_Text* text, const FM_Text* other, std::int32_t position, std::int32_t size,
                        FM_Status* status);
/// Position of the first occurrence of `other` at or after `start`, or kFM_NotFound.
std::int32_t FM_Text_Find(const FM_Text* text, const FM_Text* other, std::int32_t start, FM_Status* status);
void FM_Text_DeleteText(FM_Text* text, std::int32_t position, std::int32_t size, FM_Status* status);
/// Equality unit by unit: case and accents count.
bool FM_Text_operatorEQ(const FM_Text* text, const FM_Text* other, FM_Status* status);

// ---- Data: one typed value ------------------------------------------------------------------------------

FM_Data* FM_Data_Constructor1(FM_Status* status);
void FM_Data_Delete(FM_Data* data, FM_Status* status);
FM_NativeType FM_Data_GetNativeType(const FM_Data* data, FM_Status* status);
/// Empty: a text of no units, or a container with neither streams nor a reference text.
bool FM_Data_IsEmpty(const FM_Data* data, FM_Status* status);
/// The value as text (borrowed): numbers in decimal, a container as its reference text or file path list.
const FM_Text* FM_Data_GetAsText(const FM_Data* data, FM_Status* status);
/// The value's container (borrowed); an empty one when the value is none.
const FM_BinaryData* FM_Data_GetBinaryData(const FM_Data* data, FM_Status* status);
const FM_Locale* FM_Data_GetLocale(const FM_Data* data, FM_Status* status);
FM_Error FM_Data_SetAsText(FM_Data* data, const FM_Text* text, const FM_Locale* locale, FM_NativeType type,
                           FM_Status* status);
FM_Error FM_Data_SetAsNumber(FM_Data* data, const FM_FixPt* number, FM_NativeType type, FM_Status* status);
/// Makes the value a container. The streams' bytes are shared, not copied.
void FM_Data_SetBinaryData(FM_Data* data, const FM_BinaryData* binary, bool force_binary, FM_Status* status);

// ---- DataVect: a parameter list
// ----------------------------------------------------------------------------

FM_DataVect* FM_DataVect_Constructor1(FM_Status* status);
void FM_DataVect_Delete(FM_DataVect* list, FM_Status* status);
std::int32_t FM_DataVect_Size(const FM_DataVect* list, FM_Status* status);
/// The parameter at `index` (borrowed); an index outside the list fails with status 2.
const FM_Data* FM_DataVect_At(const FM_DataVect* list, std::int32_t index, FM_Status* status);
const FM_Text* FM_DataVect_AtAsText(const FM_DataVect* list, std::int32_t index, FM_Status* status);
const FM_FixPt* FM_DataVect_AtAsNumber(const FM_DataVect* list, std::int32_t index, FM_Status* status);
/// The host's truth value: that of the number in a text; a container is true when it is not empty.
bool FM_DataVect_AtAsBoolean(const FM_DataVect* list, std::int32_t index, FM_Status* status);
const FM_BinaryData* FM_DataVect_AtAsBinaryData(const FM_DataVect* list, std::int32_t index,
                                                FM_Status* status);
void FM_DataVect_PushBack(FM_DataVect* list, const FM_Data* data, FM_Status* status);

// ---- FixPt: the host's fixed-point decimal number
// --------------------------------------------------------------

FM_FixPt* FM_FixPt_Constructor1(FM_Status* status);
void FM_FixPt_Delete(FM_FixPt* number, FM_Status* status);
/// Truncated toward zero, and held at the ends of the signed 32-bit range.
std::int32_t FM_FixPt_AsLong(const FM_FixPt* number, FM_Status* status);
double FM_FixPt_AsFloat(const FM_FixPt* number, FM_Status* status);
bool FM_FixPt_AsBool(const FM_FixPt* number, FM_Status* status);
/// Takes the shortest decimal that reads back as `value`. Infinities and NaN fail with status 2.
void FM_FixPt_AssignDouble(FM_FixPt* number, double value, FM_Status* status);

// ---- QuadChar: a four-character code
// ---------------------------------------------------------------------------

FM_QuadChar* FM_QuadChar_Constructor1(FM_Status* status);
FM_QuadChar* FM_QuadChar_Constructor2(char first, char second, char third, char fourth, FM_Status* status);
void FM_QuadChar_Delete(FM_QuadChar* code, FM_Status* status);
/// The code as a 32-bit value, the first character in the most significant byte.
std::uint32_t FM_QuadChar_GetMacType(const FM_QuadChar* code, FM_Status* status);
void FM_QuadChar_SetMacType(FM_QuadChar* code, std::uint32_t value, FM_Status* status);

// ---- BinaryData: a container, an ordered list of typed streams
// ------------------------------------------------------

FM_BinaryData* FM_BinaryData_Constructor1(FM_Status* status);
/// A copy that shares the streams' bytes with the original.
FM_BinaryData* FM_BinaryData_Constructor2(const FM_BinaryData* other, FM_Status* status);
void FM_BinaryData_Delete(FM_BinaryData* binary, FM_Status* status);
std::int32_t FM_BinaryData_GetCount(const FM_BinaryData* binary, FM_Status* status);
/// Index of the first stream of that type, or kFM_NotFound.
std::int32_t FM_BinaryData_GetIndex(const FM_BinaryData* binary, const FM_QuadChar* type, FM_Status* status);
void FM_BinaryData_GetType(const FM_BinaryData* binary, std::int32_t index, FM_QuadChar* type,
                           FM_Status* status);
std::uint32_t FM_BinaryData_GetSize(const FM_BinaryData* binary, std::int32_t index, FM_Status* status);
/// Copies `amount` bytes from `offset` of stream `index`; a range outside the stream answers -50.
FM_Error FM_BinaryData_GetData(const FM_BinaryData* binary, std::int32_t index, std::uint32_t offset,
                               std::uint32_t amount, void* buffer, FM_Status* status);
/// Appends a stream with a copy of the bytes.
FM_Error FM_BinaryData_Add(FM_BinaryData* binary, const FM_QuadChar* type, std::uint32_t size,
                           const void* bytes, FM_Status* status);
/// Supplies `amount` bytes from `offset` of what is being added; false when it can't.
using FM_StreamReader = bool (*)(void* context, std::uint32_t offset, std::uint32_t amount, void* buffer);
/// Appends a stream whose bytes the reader supplies, so that large data need not lie in memory twice. -36
/// when the reader fails, and then nothing is added.
FM_Error FM_BinaryData_AddFromReader(FM_BinaryData* binary, const FM_QuadChar* type, std::uint32_t size,
                                     FM_StreamReader reader, void* context, FM_Status* status);
/// Removes the first stream of that type; true when there was one.
bool FM_BinaryData_Remove(FM_BinaryData* binary, const FM_QuadChar* type, FM_Status* status);
void FM_BinaryData_RemoveAll(FM_BinaryData* binary, FM_Status* status);
/// The file-path list of the "FNAM" stream (UTF-8 bytes); without one the reference text.
FM_Error FM_BinaryData_GetFNAMData(const FM_BinaryData* binary, FM_Text* path_list, FM_Status* status);
FM_Error FM_BinaryData_AddFNAMData(FM_BinaryData* binary, const FM_Text* path_list, FM_Status* status);

// ---- Locale
// ----------------------------------------------------------------------------------------------------

FM_Locale* FM_Locale_Constructor1(std::int32_t locale_type, FM_Status* status);
void FM_Locale_Delete(FM_Locale* locale, FM_Status* status);

// ---- ExprEnv: a calculation environment
// ------------------------------------------------------------------------------

/// An environment that knows no calculation yet; the call block's current-environment service fills it.
FM_ExprEnv* FM_ExprEnv_Constructor1(FM_Status* status);
void FM_ExprEnv_Delete(FM_ExprEnv* environment, FM_Status* status);
/// Evaluates the expression; a non-zero answer is the host's error and leaves `result` as it was.
FM_Error FM_ExprEnv_Evaluate(const FM_ExprEnv* environment, const FM_Text* expression, FM_Data* result,
                             FM_Status* status);
/// Registers a function under its plug-in's id and its own. `maximum` -1 means no upper limit.
FM_Error FM_ExprEnv_RegisterExternalFunction(const FM_QuadChar* plugin_id, std::int16_t function_id,
                                             const FM_Text* name, const FM_Text* prototype,
                                             std::int16_t minimum, std::int16_t maximum, std::uint32_t flags,
                                             FM_ExternalFunction handler, FM_Status* status);
FM_Error FM_ExprEnv_UnRegisterExternalFunction(const FM_QuadChar* plugin_id, std::int16_t function_id,
                                               FM_Status* status);
