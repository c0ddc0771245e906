#include "kv/framework/accessible.h"

#include <oleacc.h>

#include <new>
#include <string>

#include "kv/framework/modules.h"

namespace kv {

namespace {

struct SystemFunctions {
  decltype(&LresultFromObject) lresultFromObject;
  decltype(&CreateStdAccessibleObject) createStandardObject;
  decltype(&SysAllocString) allocateString;
};

const SystemFunctions& System() {
  static const SystemFunctions functions = [] {
    SystemFunctions found{};
    const HMODULE accessibility = LoadLibraryA("oleacc.dll");
    FindProcedure(accessibility, "LresultFromObject", &found.lresultFromObject);
    FindProcedure(accessibility, "CreateStdAccessibleObject", &found.createStandardObject);
    FindProcedure(LoadLibraryA("oleaut32.dll"), "SysAllocString", &found.allocateString);
    return found;
  }();
  return functions;
}

// The system's standard object for the window, with the control's own role, name and value.
class AccessibleControl final : public IAccessible {
 public:
  AccessibleControl(HWND window, LONG role, DescribeControl describe, IAccessible* standard)
      : window_(window), role_(role), describe_(describe), standard_(standard) {}
  AccessibleControl(const AccessibleControl&) = delete;
  AccessibleControl& operator=(const AccessibleControl&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    const bool own = IsEqualIID(id, __uuidof(IUnknown)) || IsEqualIID(id, __uuidof(IDispatch)) ||
                     IsEqualIID(id, __uuidof(IAccessible));
    *object = own ? static_cast<IAccessible*>(this) : nullptr;
    if (!own) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return InterlockedIncrement(&references_); }
  STDMETHODIMP_(ULONG) Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return left;
  }

  STDMETHODIMP get_accName(VARIANT child, BSTR* text) override { return Give(child, &AccessibleText::name, text); }
  STDMETHODIMP get_accValue(VARIANT child, BSTR* text) override { return Give(child, &AccessibleText::value, text); }
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override {
    if (!IsSelf(child)) return standard_->get_accRole(child, role);
    if (!role) return E_POINTER;
    role->vt = VT_I4;
    role->lVal = role_;
    return S_OK;
  }

  // Everything else comes from the system.
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return standard_->GetTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override {
    return standard_->GetTypeInfo(index, locale, info);
  }
  STDMETHODIMP GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override {
    return standard_->GetIDsOfNames(id, names, count, locale, ids);
  }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;  // the standard object would return its own name
  }
  STDMETHODIMP get_accParent(IDispatch** parent) override { return standard_->get_accParent(parent); }
  STDMETHODIMP get_accChildCount(LONG* count) override { return standard_->get_accChildCount(count); }
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override {
    return standard_->get_accChild(child, object);
  }
  STDMETHODIMP get_accDescription(VARIANT child, BSTR* text) override {
    return standard_->get_accDescription(child, text);
  }
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override { return standard_->get_accState(child, state); }
  STDMETHODIMP get_accHelp(VARIANT child, BSTR* text) override { return standard_->get_accHelp(child, text); }
  STDMETHODIMP get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override {
    return standard_->get_accHelpTopic(file, child, topic);
  }
  STDMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* text) override {
    return standard_->get_accKeyboardShortcut(child, text);
  }
  STDMETHODIMP get_accFocus(VARIANT* child) override { return standard_->get_accFocus(child); }
  STDMETHODIMP get_accSelection(VARIANT* children) override { return standard_->get_accSelection(children); }
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* text) override {
    return standard_->get_accDefaultAction(child, text);
  }
  STDMETHODIMP accSelect(LONG flags, VARIANT child) override { return standard_->accSelect(flags, child); }
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override {
    return standard_->accLocation(left, top, width, height, child);
  }
  STDMETHODIMP accNavigate(LONG direction, VARIANT start, VARIANT* end) override {
    return standard_->accNavigate(direction, start, end);
  }
  STDMETHODIMP accHitTest(LONG left, LONG top, VARIANT* child) override {
    return standard_->accHitTest(left, top, child);
  }
  STDMETHODIMP accDoDefaultAction(VARIANT child) override { return standard_->accDoDefaultAction(child); }
  STDMETHODIMP put_accName(VARIANT child, BSTR text) override { return standard_->put_accName(child, text); }
  STDMETHODIMP put_accValue(VARIANT child, BSTR text) override { return standard_->put_accValue(child, text); }

 private:
  ~AccessibleControl() { standard_->Release(); }

  static bool IsSelf(const VARIANT& child) { return child.vt == VT_I4 && child.lVal == CHILDID_SELF; }

  HRESULT Give(const VARIANT& child, std::wstring AccessibleText::* part, BSTR* text) {
    if (!text) return E_POINTER;
    *text = nullptr;
    if (!IsSelf(child)) return E_INVALIDARG;
    if (!IsWindow(window_)) return CO_E_OBJNOTCONNECTED;
    const AccessibleText described = describe_(window_);
    if ((described.*part).empty()) return S_FALSE;
    *text = System().allocateString((described.*part).c_str());
    return *text ? S_OK : E_OUTOFMEMORY;
  }

  LONG references_ = 1;
  HWND window_;
  LONG role_;
  DescribeControl describe_;
  IAccessible* standard_;  // owns one reference
};

}  // namespace

LRESULT HandleGetObject(HWND window, WPARAM wParam, LPARAM lParam, LONG role, DescribeControl describe) {
  const auto byDefault = [&] { return DefWindowProcA(window, WM_GETOBJECT, wParam, lParam); };
  if (static_cast<LONG>(lParam) != OBJID_CLIENT) return byDefault();
  const SystemFunctions& system = System();
  if (!system.lresultFromObject || !system.createStandardObject || !system.allocateString) return byDefault();
  void* standard = nullptr;
  if (FAILED(system.createStandardObject(window, OBJID_CLIENT, __uuidof(IAccessible), &standard))) return byDefault();
  auto* control = new (std::nothrow) AccessibleControl(window, role, describe, static_cast<IAccessible*>(standard));
  if (!control) {
    static_cast<IAccessible*>(standard)->Release();
    return byDefault();
  }
  const LRESULT result = system.lresultFromObject(__uuidof(IAccessible), wParam, control);
  control->Release();
  return result;
}

std::wstring WindowText(HWND window) {
  wchar_t text[256] = L"";
  // The stored text: WM_GETTEXT would convert it to the code page for a window of an 8-bit class.
  InternalGetWindowText(window, text, ARRAYSIZE(text));
  return text;
}

void NotifyValueChanged(HWND window) {
  NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, window, OBJID_CLIENT, CHILDID_SELF);
}

}  // namespace kv
