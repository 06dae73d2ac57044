// The script engine on Windows: the Script Control component running
// VBScript, created through COM on the calling thread (it is apartment
// threaded, so every later call must come from the same thread).
#include <new>
#include <string>
#include <utility>

#include "platform/codepage.hpp"
#include "platform/script_host.hpp"
#include "platform/win32/win32_support.hpp"

// After windows.h (win32_support), which leaves OLE out when lean.
#include <ole2.h>
#include <oleauto.h>

namespace kerfline::platform {
namespace {

// The mingw headers have no msscript.h: both interfaces are declared here,
// their methods in the order of the component's type library.
struct IScriptError : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Number(long* number) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Source(BSTR* source) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Description(BSTR* description) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_HelpFile(BSTR* help_file) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_HelpContext(long* help_context) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Text(BSTR* text) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Line(long* line) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Column(long* column) = 0;
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
};

struct IScriptControl : IDispatch {
  virtual HRESULT STDMETHODCALLTYPE get_Language(BSTR* language) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_Language(BSTR language) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_State(int* state) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_State(int state) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_SitehWnd(long window) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_SitehWnd(long* window) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Timeout(long* milliseconds) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_Timeout(long milliseconds) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_AllowUI(VARIANT_BOOL* allow) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_AllowUI(VARIANT_BOOL allow) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_UseSafeSubset(VARIANT_BOOL* safe) = 0;
  virtual HRESULT STDMETHODCALLTYPE put_UseSafeSubset(VARIANT_BOOL safe) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Modules(IDispatch** modules) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Error(IScriptError** error) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_CodeObject(IDispatch** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE get_Procedures(IDispatch** procedures) = 0;
  // "_AboutBox" in the type library; only the slot's place matters.
  virtual HRESULT STDMETHODCALLTYPE AboutBox() = 0;
  virtual HRESULT STDMETHODCALLTYPE AddObject(BSTR name, IDispatch* object, VARIANT_BOOL add_members) = 0;
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  virtual HRESULT STDMETHODCALLTYPE AddCode(BSTR code) = 0;
  virtual HRESULT STDMETHODCALLTYPE Eval(BSTR expression, VARIANT* result) = 0;
  virtual HRESULT STDMETHODCALLTYPE ExecuteStatement(BSTR statement) = 0;
  virtual HRESULT STDMETHODCALLTYPE Run(BSTR procedure, SAFEARRAY** parameters, VARIANT* result) = 0;
};

const CLSID kScriptControlClass = {
    0x0E59F1D5, 0x1FBE, 0x11D0, {0x8F, 0xF2, 0x00, 0xA0, 0xD1, 0x00, 0x38, 0xBC}};
const IID kScriptControlId = {0x0E59F1D3, 0x1FBE, 0x11D0, {0x8F, 0xF2, 0x00, 0xA0, 0xD1, 0x00, 0x38, 0xBC}};
const IID kScriptErrorId = {0x70841C78, 0x067D, 0x11D0, {0x95, 0xD8, 0x00, 0xA0, 0x24, 0x63, 0xAB, 0x28}};

// In-process server and handler, local and remote server.
constexpr DWORD kAnyServer = 0x17;
constexpr long kTimeoutMs = 1000000;

// Owns a BSTR; texts cross in Windows-1252.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
      wide.push_back(static_cast<wchar_t>(cp1252::to_unicode(static_cast<unsigned char>(c))));
    value_ = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (value_ == nullptr) throw std::bad_alloc();
  }
  ~Bstr() { SysFreeString(value_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;

  BSTR get() const { return value_; }
  BSTR* out() { return &value_; }
  std::string narrow() const { return narrow(value_); }
  static std::string narrow(BSTR value) {
    return value == nullptr
               ? std::string()
               : cp1252::from_utf16(reinterpret_cast<const char16_t*>(value), SysStringLen(value));
  }

 private:
  BSTR value_ = nullptr;
};

// A failed COM call that is not a script error.
ScriptError call_error(HRESULT hr, const char* call) {
  return {0, static_cast<long>(hr), os_error(static_cast<int>(hr), call).message, {}};
}

class ComScriptHost final : public ScriptHost {
 public:
  ComScriptHost() = default;
  ~ComScriptHost() override {
    if (control_ != nullptr) control_->Release();
    if (com_initialized_) CoUninitialize();
  }

  bool start(ScriptError& error) {
    HRESULT hr = CoInitialize(nullptr);
    // A thread already in the multi-threaded apartment keeps it; COM then
    // marshals to the component and is not ours to uninitialise.
    com_initialized_ = SUCCEEDED(hr);
    if (FAILED(hr) && hr != RPC_E_CHANGED_MODE) return fail(call_error(hr, "CoInitialize"), error);
    IUnknown* unknown = nullptr;
    hr = CoCreateInstance(kScriptControlClass, nullptr, kAnyServer, IID_IUnknown,
                          reinterpret_cast<void**>(&unknown));
    if (FAILED(hr)) return fail(call_error(hr, "CoCreateInstance ScriptControl"), error);
    hr = OleRun(unknown);
    if (SUCCEEDED(hr)) hr = unknown->QueryInterface(kScriptControlId, reinterpret_cast<void**>(&control_));
    unknown->Release();
    if (FAILED(hr)) return fail(call_error(hr, "ScriptControl: OleRun / QueryInterface"), error);

    const Bstr language("VBScript");
    hr = control_->put_Language(language.get());
    if (SUCCEEDED(hr)) hr = control_->put_AllowUI(VARIANT_TRUE);
    if (SUCCEEDED(hr))
      hr = control_->put_SitehWnd(static_cast<long>(reinterpret_cast<INT_PTR>(GetActiveWindow())));
    if (SUCCEEDED(hr)) hr = control_->put_Timeout(kTimeoutMs);
    if (FAILED(hr)) return fail(call_error(hr, "ScriptControl: setting up VBScript"), error);
    return true;
  }

  bool add_code(std::string_view code, ScriptError& error) override {
    const Bstr text(code);
    const HRESULT hr = control_->AddCode(text.get());
    if (FAILED(hr)) return fail(script_error(hr, "AddCode"), error);
    return true;
  }

  std::optional<std::string> eval(std::string_view expression, ScriptError& error) override {
    const Bstr text(expression);
    VARIANT value;
    VariantInit(&value);
    HRESULT hr = control_->Eval(text.get(), &value);
    if (FAILED(hr)) {
      error = script_error(hr, "Eval");
      return std::nullopt;
    }
    hr = VariantChangeType(&value, &value, 0, VT_BSTR);
    std::optional<std::string> result;
    if (SUCCEEDED(hr)) {
      result = Bstr::narrow(value.bstrVal);
    } else {
      error = call_error(hr, "VariantChangeType");
    }
    VariantClear(&value);
    return result;
  }

 private:
  static bool fail(ScriptError reason, ScriptError& error) {
    error = std::move(reason);
    return false;
  }

  // What the component knows about the error of the call that just failed;
  // the bare HRESULT when it cannot say.
  ScriptError script_error(HRESULT hr, const char* call) {
    IScriptError* reported = nullptr;
    if (FAILED(control_->get_Error(&reported)) || reported == nullptr) return call_error(hr, call);
    IScriptError* script_error = nullptr;
    const HRESULT found = reported->QueryInterface(kScriptErrorId, reinterpret_cast<void**>(&script_error));
    reported->Release();
    if (FAILED(found) || script_error == nullptr) return call_error(hr, call);
    ScriptError error;
    Bstr description;
    Bstr source;
    script_error->get_Line(&error.line);
    script_error->get_Number(&error.number);
    script_error->get_Description(description.out());
    script_error->get_Text(source.out());
    script_error->Clear();
    script_error->Release();
    error.description = description.narrow();
    error.source = source.narrow();
    return error;
  }

  bool com_initialized_ = false;
  IScriptControl* control_ = nullptr;
};

}  // namespace

std::unique_ptr<ScriptHost> ScriptHost::create(ScriptError& error) {
  auto host = std::make_unique<ComScriptHost>();
  if (!host->start(error)) return nullptr;
  return host;
}

}  // namespace kerfline::platform
