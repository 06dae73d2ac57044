/*
 * remote_messages.hpp - the typed messages exchanged with a remote plot
 * manager over TCP (devices of type 6, see CTcpIpClientDeviceSettings).
 *
 * Every message starts with its wire type as a little-endian 32-bit integer,
 * followed by its payload:
 *
 *   1 State       state, job number                       (2 x 32 bits)
 *   2 Msg         the text
 *   3 Binary      first integer, size, second integer, first text, second
 *                 text, then exactly size data bytes (the size travels
 *                 second although SOCKBINDATA keeps it first)
 *   4 StringList  a count (16 bits; 0xFFFF and 32 bits from 0xFFFF on),
 *                 then each text
 *   5 Query       query number; the parameter text only for numbers 2 and
 *                 5; the job number only for 3; nothing more otherwise
 *   6 Int         the value
 *
 * A text is a length (one byte below 255; 0xFF and 16 bits below 0xFFFE;
 * 0xFF, 0xFFFF and 32 bits otherwise) and its 8-bit characters (Windows-1252)
 * without a terminator.
 *
 * The classes hold no standard-library types in their interface, so a host
 * built with another C++ run-time can use them. Texts handed out belong to
 * the object and stay valid until the object changes or is destroyed; a null
 * text passed in means "". Apart from the constructors, which fail as new
 * does, no member lets an exception out: a member that runs out of memory
 * leaves the object as it was. Objects are deleted with delete (the
 * destructors are virtual, so the library's own allocator releases them).
 */
#ifndef KERFLINE_REMOTE_MESSAGES_HPP
#define KERFLINE_REMOTE_MESSAGES_HPP

#include "kerfline/kerfline.h"

/* The caller's view of a binary message. */
struct SOCKBINDATA {
  uint32_t nSize; /* number of bytes at pData */
  int32_t nData1; /* first integer */
  int32_t nData2; /* second integer */
  void* pData;    /* the bytes (null when nSize is 0) */
  char* szText1;  /* first text, NUL-terminated */
  char* szText2;  /* second text, NUL-terminated */
};

class KERFLINE_API CSocketDataObject {
 public:
  enum ESocketDataType {
    eSocketDataNone = 0,
    eSocketDataState = 1,
    eSocketDataMsg = 2,
    eSocketDataBinary = 3,
    eSocketDataStringList = 4,
    eSocketDataQuery = 5,
    eSocketDataInt = 6
  };

  /* A bare object: type 0, no payload. */
  CSocketDataObject();
  CSocketDataObject(const CSocketDataObject& other);
  /* Takes the other's payload when both are of the same type; a bare
     object takes any (and with it the other's type). Otherwise nothing
     changes. */
  CSocketDataObject& operator=(const CSocketDataObject& other);
  virtual ~CSocketDataObject();

  ESocketDataType GetType() const;

  /* Writes the whole message (type, then payload) to pBuffer. Returns its
     length in bytes, or the negative of the length needed when nSize is
     too small (nothing is written then); -3 when memory is short. A bare
     object writes its type 0 alone. */
  virtual int32_t Serialize(unsigned char* pBuffer, uint32_t nSize) const;
  /* Reads the payload only (the type is already known) from the nSize
     bytes at pBytes. Returns the number of bytes taken, or -1 when the
     bytes end before the payload does or a length is impossible; the
     object is unchanged then. */
  virtual int32_t Read(const unsigned char* pBytes, uint32_t nSize);
  /* Reads one whole message from the nSize bytes at pBytes: the type, then
     a new object of the matching class reading its payload. Returns the
     new object (the caller deletes it) and sets *pnUsed (when not null) to
     the bytes taken; null for an unknown type, an incomplete message or
     short memory (then *pnUsed is 4 for an unknown type, 0 otherwise). */
  static CSocketDataObject* CreateObject(const unsigned char* pBytes, uint32_t nSize, uint32_t* pnUsed);

  struct Payload;
  friend class CSocketDataObjectWire;

 protected:
  explicit CSocketDataObject(Payload* pPayload);
  Payload* m_pPayload; /* null in a bare object */
};

/* Type 1: a state change of a job. State 1 with job 0 asks to disconnect. */
class KERFLINE_API CSocketDataObjectState : public CSocketDataObject {
 public:
  CSocketDataObjectState();
  CSocketDataObjectState(const CSocketDataObjectState& other);
  CSocketDataObjectState& operator=(const CSocketDataObjectState& other);
  ~CSocketDataObjectState() override;
  int32_t GetState() const;
  void SetState(int32_t nState);
  uint32_t GetJobNr() const;
  void SetJobNr(uint32_t nJobNr);
};

/* Type 2: a text. */
class KERFLINE_API CSocketDataObjectMsg : public CSocketDataObject {
 public:
  CSocketDataObjectMsg();
  CSocketDataObjectMsg(const CSocketDataObjectMsg& other);
  CSocketDataObjectMsg& operator=(const CSocketDataObjectMsg& other);
  ~CSocketDataObjectMsg() override;
  const char* GetMsg() const;
  void SetMsg(const char* szMsg);
};

/* Type 3: a block of bytes with two integers and two texts. */
class KERFLINE_API CSocketDataObjectBinary : public CSocketDataObject {
 public:
  CSocketDataObjectBinary();
  CSocketDataObjectBinary(const CSocketDataObjectBinary& other);
  CSocketDataObjectBinary& operator=(const CSocketDataObjectBinary& other);
  ~CSocketDataObjectBinary() override;
  /* Fills *pOut with the size, the integers and new copies of the bytes and
     both texts. The caller owns the copies and releases them with
     FreeData. Returns 1, or 0 (with *pOut zeroed) when memory is short or
     pOut is null. */
  int32_t GetData(SOCKBINDATA* pOut) const;
  /* Copies nSize bytes from pData (null with nSize 0 for none), the
     integers and the texts in; earlier bytes are released. */
  void SetData(const SOCKBINDATA* pIn);
  /* Releases what GetData handed out and zeroes the record; null is
     ignored. */
  static void FreeData(SOCKBINDATA* pData);
};

/* Type 4: a list of texts. */
class KERFLINE_API CSocketDataObjectStringList : public CSocketDataObject {
 public:
  CSocketDataObjectStringList();
  CSocketDataObjectStringList(const CSocketDataObjectStringList& other);
  CSocketDataObjectStringList& operator=(const CSocketDataObjectStringList& other);
  ~CSocketDataObjectStringList() override;
  /* Number of texts. */
  int32_t GetCount() const;
  /* The text at nIndex, or null outside 0..GetCount()-1. */
  const char* GetAt(int32_t nIndex) const;
  /* Replaces the list with the nCount texts at pTexts (null entries are
     ""); a negative count or null pTexts empties it. */
  void SetData(const char* const* pTexts, int32_t nCount);
  /* Appends one text. */
  void AddTail(const char* szText);
};

/* Type 5: a question to the plot manager. */
class KERFLINE_API CSocketDataObjectQuery : public CSocketDataObject {
 public:
  CSocketDataObjectQuery();
  CSocketDataObjectQuery(const CSocketDataObjectQuery& other);
  CSocketDataObjectQuery& operator=(const CSocketDataObjectQuery& other);
  ~CSocketDataObjectQuery() override;
  int32_t GetQueryNr() const;
  void SetQueryNr(int32_t nQueryNr);
  /* Travels only with query number 3. */
  uint32_t GetJobNr() const;
  void SetJobNr(uint32_t nJobNr);
  /* Travels only with query numbers 2 and 5. */
  const char* GetQueryParm() const;
  void SetQueryParm(const char* szParm);
};

/* Type 6: one number. */
class KERFLINE_API CSocketDataObjectInt : public CSocketDataObject {
 public:
  CSocketDataObjectInt();
  CSocketDataObjectInt(const CSocketDataObjectInt& other);
  CSocketDataObjectInt& operator=(const CSocketDataObjectInt& other);
  ~CSocketDataObjectInt() override;
  int32_t GetData() const;
  void SetData(int32_t nValue);
};

#endif /* KERFLINE_REMOTE_MESSAGES_HPP */
