#include "script/process_state.hpp"

#include "platform/clock.hpp"
#include "platform/codepage.hpp"
#include "script/special_functions.hpp"

namespace kerfline::script {

ProcessEval::~ProcessEval() {
  // A device function still waiting must not outlive its evaluator.
  if (Evaluator* e = evaluator_ptr_.exchange(nullptr)) e->escape();
}

Evaluator& ProcessEval::ensure_evaluator() {
  if (!registry_built_) {
    register_builtin_tables(registry_);
    for (const UserFunction& f : user_functions_)
      script::add_user_function(registry_, f.name, f.parameters, f.body);
    random_.seed(static_cast<std::mt19937::result_type>(platform::file_time_now()));
    registry_built_ = true;
  }
  if (!evaluator_) {
    evaluator_ = std::make_unique<Evaluator>(registry_, shared_);
    evaluator_ptr_.store(evaluator_.get());
  }
  return *evaluator_;
}

bool ProcessEval::add_user_function(const std::string& name, const std::string& parameters,
                                    const std::string& body) {
  if (registry_.find(name) != nullptr) return false;
  for (const UserFunction& f : user_functions_) {
    if (platform::cp1252::equals_no_case(f.name, name)) return false;
  }
  user_functions_.push_back({name, parameters, body});
  if (registry_built_) script::add_user_function(registry_, name, parameters, body);
  return true;
}

ProcessEval& process_eval() {
  static ProcessEval state;
  return state;
}

}  // namespace kerfline::script
