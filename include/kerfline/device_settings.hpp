/*
 * device_settings.hpp - the settings of one output device.
 *
 * Every output device of the suite is one section of an INI file (normally
 * "plotman.ini" in the suite directory); the section name is the device
 * name. These classes read and write such a section, keep the device's spool
 * directory and tell whether jobs are waiting for it. The INI file is passed
 * to every read and write; the classes never choose it.
 *
 * Spool directory: <base dir>/SPOOLER/SL_<SAFE NAME>, with the index file
 * "index.hot" and the subdirectory "saved" for finished jobs. The safe name
 * is the device name with ':', '/', '\', '[', ']' and '.' each replaced by
 * '_', upper-cased by the Windows-1252 rules, then Ä, Ü, Ö written as AE,
 * UE, OE; so no device name can lead out of SPOOLER/.
 *
 * The classes have no standard-library types in their interface, so a host
 * built with another C++ run-time can use them: texts are NUL-terminated
 * 8-bit strings (Windows-1252); a text returned by a Get... member belongs
 * to the object and stays valid until the field changes or the object dies;
 * a null text given to a Set... member means "". No member lets an exception
 * out (one that runs out of memory leaves the object as it was). INI writes
 * are not checked, as everywhere in the suite.
 */
#ifndef KERFLINE_DEVICE_SETTINGS_HPP
#define KERFLINE_DEVICE_SETTINGS_HPP

#include "kerfline/kerfline.h"

/* Kind of device, stored as "DevType". */
enum EDeviceType {
  DEVTYPE_NONE = 0,
  DEVTYPE_BASE = 1,        /* the base class's default */
  DEVTYPE_CUTTER = 2,      /* cutter on a port, USB path or file */
  DEVTYPE_FIXED_SPOOL = 3, /* spool directory not taken from the index file; never listed */
  DEVTYPE_LOCALE = 4,      /* local device, listed under "LocaleDevices" */
  DEVTYPE_REMOTE = 5,      /* remote plot manager */
  DEVTYPE_TCPIP_CLIENT = 6 /* TCP/IP client link */
};

/* How the device is reached, stored as "DevPortType". */
enum EPortType {
  PORTTYPE_NONE = 0,
  PORTTYPE_SPOOLER = 1, /* no dialogue with the device */
  PORTTYPE_PATH = 2,    /* "DevOut" is a port or file path */
  PORTTYPE_PRINTER = 3, /* printer queue, no dialogue */
  PORTTYPE_USB = 4,     /* USB device path */
  PORTTYPE_TCPIP = 5    /* "IP_ADDR"/"IP_PORT", no dialogue through a handle */
};

/* Kind of TCP/IP client link, stored as "TcpIpType". */
enum ETcpIpType { TCPIPTYPE_PLOTMAN = 0, TCPIPTYPE_DEVICE = 1 };

class CDriverDeviceSettings;
class CClientDeviceSettings;
class CCutterDeviceSettings;
class CRemoteDeviceSettings;
class CTcpIpClientDeviceSettings;

class KERFLINE_API CBaseDeviceSettings {
 public:
  CBaseDeviceSettings();
  /* Also sets the device name. */
  explicit CBaseDeviceSettings(const char* szDeviceName);
  virtual ~CBaseDeviceSettings();
  CBaseDeviceSettings(const CBaseDeviceSettings&) = delete;
  CBaseDeviceSettings& operator=(const CBaseDeviceSettings&) = delete;

  /* Reads "DevOut", "DevIn", "DevSuffix" (default "*.*"), "DevIni" (only
     when not empty), "DevFlgAsk", "DevFlgBreak" (greater than 0: inactive),
     "DevFlgWav", "DevPlotToFile", "DevNotifyWavFile" (only with the sound
     flag), "DevDefCount" (1), "DevDefSavedCount" (5). "DevType" is not read. */
  virtual void ReadFromIni(const char* szIniFile);
  /* Lists the device in "DeviceNames" ("LocaleDevices" for type 4) and
     writes the keys above plus "DevType". Unless the type is 3 the read-from
     path becomes the index file's directory, or the spool directory below
     the suite directory when that is empty. */
  virtual void WriteToIni(const char* szIniFile);
  /* Spool directory below the directory of GetIni(); when its index file
     is missing creates the directory, "saved" and the index file and writes
     the whole record to GetIni(). Always 1. */
  virtual int32_t InitDir();
  /* Removes the device szName from the device list with its spool files
     (as WriteCutDevice with only the name). Always 1. */
  virtual int32_t DeleteDir(const char* szName);
  /* Copies the seven flags and counts, info, name, directory, index file,
     INI file, read-from path, sound file and write-to path, and appends the
     other's suffixes. The device type is not copied. Null does nothing. */
  virtual void CopySettings(const CBaseDeviceSettings* pOther);

  /* "DevType" of the device's section, default 2. */
  static int32_t GetDeviceType(const char* szName, const char* szIniFile);
  /* "DevPortType" of the device's section, default 2. */
  static int32_t GetPortType(const char* szName, const char* szIniFile);
  /* "ActiveJobs"/"Count" of the device's index file below the INI file's
     directory, as it stands (not reduced to 0 or 1). */
  static int32_t HasActiveJob(const char* szName, const char* szIniFile);
  /* 1 when the index file named with only ':' made safe has no active job
     and the name does not begin with "LPT", else 0. */
  static int32_t IsSetupAllowed(const char* szName, const char* szIniFile);

  /* 1 when the own index file counts active jobs, else 0. */
  int32_t HasActiveJob() const;

  const char* GetWriteTo() const;
  void SetWriteTo(const char* sz);
  int32_t GetDeviceType() const;
  void SetDeviceType(int32_t nType);
  const char* GetDeviceName() const;
  void SetDeviceName(const char* sz);
  const char* GetDeviceInfo() const;
  void SetDeviceInfo(const char* sz);
  const char* GetDir() const;
  void SetDir(const char* sz);
  const char* GetReadFrom() const;
  void SetReadFrom(const char* sz);
  const char* GetIni() const;
  void SetIni(const char* sz);
  const char* GetIndexFile() const;
  const char* GetWav() const;
  void SetWav(const char* sz);

  /* Number of job suffixes and the suffix at nIndex (null outside). */
  int32_t GetJobSuffixes() const;
  const char* GetJobSuffix(int32_t nIndex) const;
  /* Every suffix followed by ';'. */
  const char* GetJobSuffix() const;
  /* Splits szText at cSeparator the way the other programs of the suite do:
     entry i starts after separator i-1 and is as long as separator i's
     position in the whole text (so it may run on), and a text that does not
     end with the separator gets one more, empty, entry. */
  void SetJobSuffix(const char* szText, char cSeparator);

  int32_t GetServerFlag() const;
  void SetServerFlag(int32_t n);
  int32_t IsMsgFlag() const;
  void SetMsgFlag(int32_t n);
  int32_t IsActive() const;
  void SetActive(int32_t n);
  int32_t IsPlayWav() const;
  void SetPlayWav(int32_t n);
  int32_t GetPlotToFile() const;
  void SetPlotToFile(int32_t n);
  int32_t GetDefCount() const;
  void SetDefCount(int32_t n);
  int32_t GetMaxFileCount() const;
  void SetMaxFileCount(int32_t n);
  /* 1 when no finished job is kept (saved-job count 0). */
  int32_t IsDeleteFilesFlag() const;

  struct Data;

 protected:
  Data* m_pBase;
};

class KERFLINE_API CDriverDeviceSettings : public CBaseDeviceSettings {
 public:
  /* The driver path starts as the suite directory + "cutter/". */
  CDriverDeviceSettings();
  ~CDriverDeviceSettings() override;

  /* The base keys, then "DevDrvPath" (empty keeps the current path),
     "DevDrvFileName", "DevDrvInfo". */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;
  using CBaseDeviceSettings::CopySettings;
  /* The base part and the three driver fields. */
  virtual void CopySettings(const CDriverDeviceSettings* pOther);

  const char* GetDrvPath() const;
  void SetDrvPath(const char* sz);
  const char* GetDrvFileName() const;
  void SetDrvFileName(const char* sz);
  const char* GetDrvName() const;
  void SetDrvName(const char* sz);

  struct Data;

 protected:
  Data* m_pDriver;
};

class KERFLINE_API CClientDeviceSettings : public CDriverDeviceSettings {
 public:
  CClientDeviceSettings();
  ~CClientDeviceSettings() override;
  using CDriverDeviceSettings::CopySettings;
  /* The base part. */
  virtual void CopySettings(const CClientDeviceSettings* pOther);
};

class KERFLINE_API CCutterDeviceSettings : public CDriverDeviceSettings {
 public:
  /* Device type 2. */
  CCutterDeviceSettings();
  explicit CCutterDeviceSettings(const char* szDeviceName);
  ~CCutterDeviceSettings() override;

  /* The driver keys, then "IP_ADDR" ("0.0.0.0"), "IP_PORT", "DevFlgUseSpooler",
     "DevFlgServer", "ActJobNr", "DevUsbDeviceName", "DevPortType" (2) and,
     only while the server flag is set, "DevServerPort" (1). */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;
  using CDriverDeviceSettings::CopySettings;
  /* The base part, address, ports, spooler flag, USB name, port type and
     job number; not the driver fields. */
  virtual void CopySettings(const CCutterDeviceSettings* pOther);

  /* "a.b.c.d", or the four bytes into pBytes[0..3]. */
  const char* GetTCPIPAddress() const;
  void GetTCPIPAddress(unsigned char* pBytes) const;
  /* Takes "a.b.c.d"; anything else is 0.0.0.0. */
  void SetTCPIPAddress(const char* sz);
  int32_t GetTCPIPPort() const;
  void SetTCPIPPort(int32_t n);
  int32_t GetSpoolerFlag() const;
  void SetSpoolerFlag(int32_t n);
  uint32_t GetJobNr() const;
  void SetJobNr(uint32_t n);
  /* USB device name; at run time the port layer puts the device path here. */
  const char* GetUSBDeviceName() const;
  void SetUSBDeviceName(const char* sz);
  int32_t GetPortType() const;
  void SetPortType(int32_t n);
  int32_t GetServerPort() const;
  void SetServerPort(int32_t n);

  struct Data;

 protected:
  Data* m_pCutter;
};

class KERFLINE_API CRemoteDeviceSettings : public CClientDeviceSettings {
 public:
  /* Device type 5. */
  CRemoteDeviceSettings();
  ~CRemoteDeviceSettings() override;

  /* The driver keys, then "DevRemoteIndexFile", "DevRemoteIni",
     "DevRemoteDevName" and the server's "DevDrvFileName", "DevDrvInfo". */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;
  int32_t InitDir() override;
  using CClientDeviceSettings::CopySettings;
  /* The base part and the remote index and INI files. */
  virtual void CopySettings(const CRemoteDeviceSettings* pOther);

  const char* GetRemoteIndexFile() const;
  void SetRemoteIndexFile(const char* sz);
  const char* GetRemoteIniFile() const;
  void SetRemoteIniFile(const char* sz);
  const char* GetServerDeviceName() const;
  void SetServerDeviceName(const char* sz);
  const char* GetServerDriverFileName() const;
  const char* GetServerDriverInfo() const;

  struct Data;

 protected:
  Data* m_pRemote;
};

class KERFLINE_API CTcpIpClientDeviceSettings : public CClientDeviceSettings {
 public:
  /* Device type 6. */
  CTcpIpClientDeviceSettings();
  ~CTcpIpClientDeviceSettings() override;

  /* The base keys (not the driver's), then "DevServerDevName", "IP_ADDR",
     "IP_PORT", "TcpIpType", "DevDrvFileName", "DevDrvInfo", "TcpIpHostname". */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;
  using CClientDeviceSettings::CopySettings;
  /* The base part and every TCP/IP field. */
  virtual void CopySettings(const CTcpIpClientDeviceSettings* pOther);

  const char* GetServerDeviceName() const;
  void SetServerDeviceName(const char* sz);
  const char* GetTCPIPAddress() const;
  void GetTCPIPAddress(unsigned char* pBytes) const;
  void SetTCPIPAddress(const char* sz);
  int32_t GetTCPIPPort() const;
  void SetTCPIPPort(int32_t n);
  int32_t GetTcpIpType() const;
  void SetTcpIpType(int32_t n);
  const char* GetServerDriverFileName() const;
  const char* GetServerDriverInfo() const;
  const char* GetTCPIPHostName() const;
  void SetTCPIPHostName(const char* sz);

  struct Data;

 protected:
  Data* m_pTcpIp;
};

class KERFLINE_API CHFDeviceSettings : public CBaseDeviceSettings {
 public:
  CHFDeviceSettings();
  ~CHFDeviceSettings() override;

  /* The base keys, then "DevHfStartAppTmpl", "DevFlgComLptHf",
     "DevFlgStartApp", "DevPortType" (0). */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;

  const char* GetStartAppTmpl() const;
  void SetStartAppTmpl(const char* sz);
  int32_t GetLocaleHfFlag() const;
  void SetLocaleHfFlag(int32_t n);
  int32_t GetStartAppFlag() const;
  void SetStartAppFlag(int32_t n);
  int32_t GetPortType() const;
  void SetPortType(int32_t n);

  struct Data;

 protected:
  Data* m_pHF;
};

class KERFLINE_API CExtHFDeviceSettings : public CHFDeviceSettings {
 public:
  CExtHFDeviceSettings();
  ~CExtHFDeviceSettings() override;

  /* The HF keys, then "IP_ADDR" ("0.0.0.0"), "IP_PORT", "DevUsbDeviceName",
     "DevUsbFriendlyName", "mask", "rip", "LastDir", "OutBufSize" ("0"),
     "RipMinPercent" ("5"). Writing leaves "RipMinPercent" to WriteRipMinSize. */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;
  /* Writes "RipMinPercent" to the device's section. */
  void WriteRipMinSize(const char* szIniFile);

  const char* GetTCPIPAddress() const;
  void GetTCPIPAddress(unsigned char* pBytes) const;
  void SetTCPIPAddress(const char* sz);
  int32_t GetPort() const;
  int32_t GetTCPIPPort() const;
  void SetTCPIPPort(int32_t n);
  const char* GetUSBDeviceName() const;
  void SetUSBDeviceName(const char* sz);
  const char* GetUSBFriendlyName() const;
  void SetUSBFriendlyName(const char* sz);
  const char* GetFileMask() const;
  void SetFileMask(const char* sz);
  int32_t IsRip() const;
  void SetRip(int32_t n);
  const char* GetLastDir() const;
  void SetLastDir(const char* sz);
  uint32_t GetAlternateBufsize() const;
  void SetAlternateBufsize(uint32_t n);
  int32_t GetRipMinPercent() const;
  void SetRipMinPercent(int32_t n);

  struct Data;

 protected:
  Data* m_pExtHF;
};

class KERFLINE_API CLocaleDeviceSettings : public CBaseDeviceSettings {
 public:
  /* Device type 4. */
  CLocaleDeviceSettings();
  ~CLocaleDeviceSettings() override;

  /* The base keys, then "DevPortType" (0) and "LastDir". */
  void ReadFromIni(const char* szIniFile) override;
  void WriteToIni(const char* szIniFile) override;

  int32_t GetPortType() const;
  void SetPortType(int32_t n);
  const char* GetLastDir() const;
  void SetLastDir(const char* sz);

  struct Data;

 protected:
  Data* m_pLocale;
};

#endif /* KERFLINE_DEVICE_SETTINGS_HPP */
