// The window of "mvsup icons --window": every icon as the client's views
// load it (LoadMvxItemIcon, LoadServerMapIcon) and a picture drawn by
// PutBitmap, so that a support engineer sees what a machine shows.
#include "icon_window.h"

#include <windows.h>

#include <string>
#include <vector>

#include "MvSup2u.h"

namespace mvsup::tool {
namespace {

constexpr int kWindowWidth = 800;
constexpr int kWindowHeight = 640;
constexpr int kColumn = 70;
constexpr int kRowHeight = 92;
constexpr int kMargin = 12;
constexpr const wchar_t* kWindowClass = L"MvSupIconWindow";

struct Shown {
  std::wstring label;
  HICON large_plain = nullptr, small_plain = nullptr, large_selected = nullptr, small_selected = nullptr;
};

struct WindowState {  // owned by show_icon_window
  std::vector<Shown> items;
  std::vector<Shown> mail;
  std::vector<Shown> map;
  std::wstring bitmap;
  HFONT font = nullptr;
};

// A committed item info of one type, with a file name and a mail class.
BYTE* make_item(MVXITEMTYPE type, const wchar_t* file = nullptr, const wchar_t* mail_class = nullptr) {
  BYTE* item = nullptr;
  MvxPutMvHandlePropValue(0x20, type, 1, L"", &item);
  if (file) MvxPutStringPropValue(0x80000200, file, &item);
  if (mail_class) MvxPutCustomStringProp(L"OutlookMessageClass", mail_class, 1, &item);
  return item;
}

Shown item_icons(const wchar_t* label, BYTE* item) {
  Shown shown{label};
  LoadMvxItemIcon(item, FALSE, &shown.large_plain, &shown.small_plain, nullptr);
  LoadMvxItemIcon(item, TRUE, &shown.large_selected, &shown.small_selected, nullptr);
  FreeMvxInfo(item);
  return shown;
}

void fill(WindowState& state) {
  const struct {
    const wchar_t* label;
    MVXITEMTYPE type;
  } types[] = {{L"Server", 1},     {L"Collection", 2}, {L"Calendar", 5}, {L"Discussion", 6}, {L"URL", 7},
               {L"Topic", 8},      {L"Query", 9},      {L"Event", 10},   {L"Rendition", 11}, {L"User", 14},
               {L"Group", 15},     {L"Workspace", 20}, {L"Wiki", 21},    {L"Weblog", 22},    {L"Unknown", 16}};
  for (const auto& t : types) state.items.push_back(item_icons(t.label, make_item(t.type)));
  state.items.push_back(item_icons(L"Document", make_item(3)));
  const struct {
    const wchar_t* label;
    const wchar_t* mail_class;
  } classes[] = {{L"Note", L"IPM.Note"},        {L"Post", L"IPM.Post"},       {L"Appointm.", L"IPM.Appointment"},
                 {L"Task", L"IPM.Task"},        {L"Sticky", L"IPM.StickyNote"}, {L"Contact", L"IPM.Contact"},
                 {L"Activity", L"IPM.Activity"}};
  for (const auto& c : classes) state.mail.push_back(item_icons(c.label, make_item(3, L"mail.htm", c.mail_class)));
  const struct {
    const wchar_t* label;
    short level;
    DWORD flags;
  } entries[] = {{L"Online", 0, 0x800}, {L"Offline", 0, 0},         {L"Busy", 0, 0x2800}, {L"Error", 0, 0x1800},
                 {L"Node", 2, 0},       {L"Linked", 0, 0x08000000}, {L"Linked node", 2, 0x08000000}};
  for (const auto& e : entries) {
    Shown shown{e.label};
    // Without a large slot the index is the unselected one; with it, the
    // selected one (the library's rule).
    LoadServerMapIcon(e.level, e.flags, nullptr, &shown.small_plain, nullptr);
    LoadServerMapIcon(e.level, e.flags, &shown.large_selected, &shown.small_selected, nullptr);
    state.map.push_back(shown);
  }
}

void free_icons(std::vector<Shown>& row) {
  for (Shown& shown : row)
    for (HICON icon : {shown.large_plain, shown.small_plain, shown.large_selected, shown.small_selected})
      if (icon) DestroyIcon(icon);
  row.clear();
}

void text(HDC dc, int x, int y, const std::wstring& s) { TextOutW(dc, x, y, s.c_str(), static_cast<int>(s.size())); }

// One row: per entry its plain large and small icons, the selected pair
// below them, and its label.
int draw_row(HDC dc, int y, const wchar_t* title, const std::vector<Shown>& row) {
  SetTextColor(dc, RGB(0x1D, 0x4F, 0x8F));
  text(dc, kMargin, y, title);
  SetTextColor(dc, RGB(0x34, 0x40, 0x4F));
  y += 20;
  int x = kMargin;
  for (const Shown& shown : row) {
    if (x + kColumn > kWindowWidth - kMargin) {
      x = kMargin;
      y += kRowHeight;
    }
    const auto draw = [&](HICON icon, int dx, int dy, int edge) {
      if (icon) DrawIconEx(dc, x + dx, y + dy, icon, edge, edge, 0, nullptr, DI_NORMAL);
    };
    draw(shown.large_plain, 6, 0, 32);
    draw(shown.small_plain, 42, 16, 16);
    draw(shown.large_selected, 6, 36, 32);
    draw(shown.small_selected, 42, 52, 16);
    text(dc, x + 4, y + 72, shown.label);
    x += kColumn;
  }
  return y + kRowHeight + 6;
}

LRESULT CALLBACK window_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  auto* state = reinterpret_cast<WindowState*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT paint;
      HDC dc = BeginPaint(window, &paint);
      if (state != nullptr) {
        HGDIOBJ old_font = SelectObject(dc, state->font);
        SetBkMode(dc, TRANSPARENT);
        int y = draw_row(dc, 8, L"Items (LoadMvxItemIcon): plain, selected", state->items);
        y = draw_row(dc, y, L"Mail saved as .htm, by OutlookMessageClass", state->mail);
        y = draw_row(dc, y, L"Server map (LoadServerMapIcon)", state->map);
        SetTextColor(dc, RGB(0x1D, 0x4F, 0x8F));
        text(dc, kMargin, y, L"A 256-colour bitmap file (PutBitmap)");
        PutBitmap(dc, state->bitmap.c_str(), kMargin, y + 20);
        SelectObject(dc, old_font);
      }
      EndPaint(window, &paint);
      return 0;
    }
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      return DefWindowProcW(window, message, wparam, lparam);
  }
}

}  // namespace

int show_icon_window(const std::wstring& bitmap) {
  WindowState state;
  state.bitmap = bitmap;
  state.font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
  fill(state);
  WNDCLASSW window_class = {};
  window_class.lpfnWndProc = window_procedure;
  window_class.hInstance = GetModuleHandleW(nullptr);
  window_class.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  window_class.hbrBackground = static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH));
  window_class.lpszClassName = kWindowClass;
  RegisterClassW(&window_class);
  HWND window = CreateWindowExW(0, kWindowClass, L"MvSup2u icons", WS_OVERLAPPEDWINDOW, 20, 20, kWindowWidth,
                                kWindowHeight, nullptr, nullptr, window_class.hInstance, nullptr);
  if (window == nullptr) return 1;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&state));
  ShowWindow(window, SW_SHOWNORMAL);
  UpdateWindow(window);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  free_icons(state.items);
  free_icons(state.mail);
  free_icons(state.map);
  return 0;
}

}  // namespace mvsup::tool
