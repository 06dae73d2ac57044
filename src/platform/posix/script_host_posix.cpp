// The script engine outside Windows: a Lua 5.4 state with only the pure
// libraries (base without file or chunk loading, string, table, math, utf8),
// an allocator that refuses to grow past kScriptMemoryLimit and a count hook
// that ends a call after kScriptInstructionLimit instructions. Driver files
// come from anywhere, so nothing in here may reach a file, a process or a
// module.
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/script_host.hpp"

#if defined(KERFLINE_HAVE_LUA)
#  include <lua.hpp>
#endif

namespace kerfline::platform {

#if defined(KERFLINE_HAVE_LUA)
namespace {

constexpr const char* kGlobalChunk = "global code";
constexpr const char* kExpressionChunk = "expression";

struct MemoryBudget {
  std::size_t used = 0;
  std::size_t limit = kScriptMemoryLimit;
};

void* limited_alloc(void* ud, void* block, std::size_t old_size, std::size_t new_size) {
  auto* budget = static_cast<MemoryBudget*>(ud);
  const std::size_t old_bytes = block != nullptr ? old_size : 0;  // else old_size is a type tag
  if (new_size == 0) {
    std::free(block);
    budget->used -= old_bytes;
    return nullptr;
  }
  if (new_size > old_bytes && new_size - old_bytes > budget->limit - budget->used) return nullptr;
  void* grown = std::realloc(block, new_size);
  if (grown != nullptr) budget->used = budget->used - old_bytes + new_size;
  return grown;
}

void stop_runaway(lua_State* L, lua_Debug* /*ar*/) {
  luaL_where(L, 0);
  lua_pushstring(L, "instruction limit reached");
  lua_concat(L, 2);
  lua_error(L);
}

// collectgarbage with only the harmless options: a script may not stop the
// collector or change its pace.
int limited_collectgarbage(lua_State* L) {
  const std::string option = luaL_optstring(L, 1, "collect");
  if (option == "count") {
    lua_pushnumber(L, static_cast<lua_Number>(lua_gc(L, LUA_GCCOUNT)) +
                          static_cast<lua_Number>(lua_gc(L, LUA_GCCOUNTB)) / 1024.0);
    return 1;
  }
  if (option == "collect") {
    lua_gc(L, LUA_GCCOLLECT);
    lua_pushinteger(L, 0);
    return 1;
  }
  return luaL_error(L, "collectgarbage option '%s' is not available", option.c_str());
}

int open_sandbox(lua_State* L) {
  const luaL_Reg libraries[] = {{LUA_GNAME, luaopen_base},
                                {LUA_STRLIBNAME, luaopen_string},
                                {LUA_TABLIBNAME, luaopen_table},
                                {LUA_MATHLIBNAME, luaopen_math},
                                {LUA_UTF8LIBNAME, luaopen_utf8}};
  for (const luaL_Reg& library : libraries) {
    luaL_requiref(L, library.name, library.func, 1);
    lua_pop(L, 1);
  }
  for (const char* name : {"dofile", "loadfile", "load", "print", "require"}) {
    lua_pushnil(L);
    lua_setglobal(L, name);
  }
  lua_pushcfunction(L, limited_collectgarbage);
  lua_setglobal(L, "collectgarbage");
  lua_getglobal(L, LUA_STRLIBNAME);
  lua_pushnil(L);
  lua_setfield(L, -2, "dump");  // bytecode out is no use without bytecode in
  lua_pop(L, 1);
  return 0;
}

std::string line_of(std::string_view text, long line) {
  std::size_t begin = 0;
  for (long n = 1; n < line; ++n) {
    begin = text.find('\n', begin);
    if (begin == std::string_view::npos) return {};
    ++begin;
  }
  std::string_view rest = text.substr(begin);
  rest = rest.substr(0, rest.find('\n'));
  if (!rest.empty() && rest.back() == '\r') rest.remove_suffix(1);
  return std::string(rest);
}

// Float results as the Windows engine writes them: up to 15 significant
// digits, no ".0" on whole numbers.
std::string number_text(lua_State* L, int index) {
  char buffer[64];
  if (lua_isinteger(L, index)) {
    std::snprintf(buffer, sizeof buffer, "%" PRId64, static_cast<std::int64_t>(lua_tointeger(L, index)));
  } else {
    const double value = lua_tonumber(L, index);
    if (!std::isfinite(value)) return std::isnan(value) ? "NaN" : (value > 0 ? "Infinity" : "-Infinity");
    std::snprintf(buffer, sizeof buffer, "%.15g", value);
  }
  return buffer;
}

class LuaHost final : public ScriptHost {
 public:
  LuaHost() = default;
  ~LuaHost() override {
    if (L_ != nullptr) lua_close(L_);
  }

  // Opens the state and its libraries; the budget is a member, so it
  // outlives the state that allocates through it.
  bool start(ScriptError& error) {
    L_ = lua_newstate(limited_alloc, &budget_);
    if (L_ == nullptr) {
      error = {0, LUA_ERRMEM, "not enough memory for the script engine", {}};
      return false;
    }
    lua_pushcfunction(L_, open_sandbox);
    const int status = lua_pcall(L_, 0, 0, 0);
    if (status == LUA_OK) return true;
    error = to_error(status);
    return false;
  }

  bool add_code(std::string_view code, ScriptError& error) override {
    global_code_.assign(code);
    return run(global_code_, kGlobalChunk, 0, error);
  }

  std::optional<std::string> eval(std::string_view expression, ScriptError& error) override {
    expression_.assign(expression);
    const std::string chunk = "return " + expression_;
    if (!run(chunk, kExpressionChunk, 1, error)) return std::nullopt;
    std::optional<std::string> text;
    switch (lua_type(L_, -1)) {
      case LUA_TNIL:
        text.emplace();
        break;
      case LUA_TBOOLEAN:
        text.emplace(lua_toboolean(L_, -1) ? "True" : "False");
        break;
      case LUA_TNUMBER:
        text = number_text(L_, -1);
        break;
      case LUA_TSTRING: {
        std::size_t length = 0;
        const char* value = lua_tolstring(L_, -1, &length);
        text.emplace(value, length);
        break;
      }
      default:
        error = {1, LUA_ERRRUN, "type mismatch: the value is not a number, text or truth value",
                 line_of(expression_, 1)};
        break;
    }
    lua_settop(L_, 0);
    return text;
  }

 private:
  bool run(const std::string& chunk, const char* chunk_name, int results, ScriptError& error) {
    lua_settop(L_, 0);
    const std::string name = std::string("=") + chunk_name;
    int status = luaL_loadbufferx(L_, chunk.data(), chunk.size(), name.c_str(), "t");
    if (status == LUA_OK) {
      lua_sethook(L_, stop_runaway, LUA_MASKCOUNT, kScriptInstructionLimit);
      status = lua_pcall(L_, 0, results, 0);
      lua_sethook(L_, nullptr, 0, 0);
    }
    if (status == LUA_OK) return true;
    error = to_error(status);
    lua_settop(L_, 0);
    return false;
  }

  // "expression:1: message" -> line 1, the message and the faulty line.
  ScriptError to_error(int status) const {
    ScriptError error;
    error.number = status;
    const char* message = lua_tostring(L_, -1);
    error.description = message != nullptr ? message : "error object is not a string";
    for (const auto& [chunk_name, text] :
         {std::pair{kGlobalChunk, &global_code_}, std::pair{kExpressionChunk, &expression_}}) {
      const std::string prefix = std::string(chunk_name) + ":";
      if (error.description.compare(0, prefix.size(), prefix) != 0) continue;
      char* end = nullptr;
      const long line = std::strtol(error.description.c_str() + prefix.size(), &end, 10);
      if (end == error.description.c_str() + prefix.size() || std::strncmp(end, ": ", 2) != 0) continue;
      error.line = line;
      error.description.erase(0, static_cast<std::size_t>(end + 2 - error.description.c_str()));
      error.source = line_of(*text, line);
      break;
    }
    return error;
  }

  MemoryBudget budget_;
  lua_State* L_ = nullptr;
  std::string global_code_;
  std::string expression_;
};

}  // namespace

std::unique_ptr<ScriptHost> ScriptHost::create(ScriptError& error) {
  auto host = std::make_unique<LuaHost>();
  if (!host->start(error)) return nullptr;
  return host;
}

#else

std::unique_ptr<ScriptHost> ScriptHost::create(ScriptError& error) {
  error = {0, 0, "this build has no script engine (Lua 5.4 was not found when it was configured)", {}};
  return nullptr;
}

#endif

}  // namespace kerfline::platform
