// OdDbAssocGraph: the actions of one network and their dependencies, in memory.
//
// The filed objects are the truth: actions own dependencies, and a dependency names what it depends
// on. The graph is made from them and follows them, so that evaluation reads arrays instead of
// opening objects. Its laws:
//
// 1. A node is an action that the network lists. An edge leads from a variable to an action that
//    has a value dependency on it. Edges form no cycle; every node has a place in an order in which
//    edges lead forward (graph_order.cpp).
// 2. A node is broken while its expression cannot be linked or compiled: a name is not there, or a
//    dependency leads to nothing. It keeps its value.
// 3. An action stores why it waits for evaluation itself: edited, or an input got another value.
//    What follows from that, the marks on everything downstream, is computed and never stored; so
//    undo and files have one place for it (graph_evaluation.cpp).
// 4. Numbers of variables are in one array, which is at the same time the slots of all programs.
// 5. Undo, redo and clones change objects behind the graph. They note which; settle() links those
//    anew before anything is asked.
#pragma once

#include <unordered_map>
#include <vector>

#include "platform/assoc/assoc_status.h"
#include "platform/assoc/edge_list.h"
#include "platform/assoc/value_record.h"
#include "platform/base/non_copyable.h"
#include "platform/base/result.h"
#include "platform/base/string.h"
#include "platform/db/db_enums.h"
#include "platform/expressions/compile.h"
#include "platform/expressions/program.h"
#include "platform/filer/object_id.h"
#include "platform/rx/smart_ptr.h"

class OdDbAssocAction;
class OdDbAssocEvaluationCallback;
class OdDbAssocNetwork;
class OdDbAssocVariable;

/// An expression that was checked and may be put in place; nodes are indices of the graph.
struct OdDbAssocDefinition {
  OdExpression::Program program;
  std::vector<OdUInt32> inputs;  ///< each once, in order of mention
  std::vector<std::pair<OdUInt32, OdExpression::Program>> recompiled;  ///< what depends on it
  double value = 0.0;
  bool hasValue = false;
};

/// Which nodes an evaluation takes.
enum class OdDbAssocScope : int {
  kAll,
  kValues,     ///< variables, and actions that read one
  kVariables,  ///< of no derived class
};

class OdDbAssocGraph : OdNonCopyable {
 public:
  using Index = OdUInt32;
  static constexpr Index kNone = ~Index{0};

  /// An edge as its end sees it.
  struct Input {
    Index node;                ///< the variable that is read
    OdUInt32 place;            ///< of the edge among the variable's outputs
    OdDbIdRecord* dependency;  ///< the filed object of the edge
  };
  /// An edge as its beginning sees it.
  struct Output {
    Index node;      ///< what reads the variable
    OdUInt32 input;  ///< of the edge among its inputs
  };
  using Inputs = OdDbEdgeList<Input>;
  using Outputs = OdDbEdgeList<Output>;

  explicit OdDbAssocGraph(OdDbAssocNetwork* network) : m_network(network) {}
  ~OdDbAssocGraph();

  // What objects report.
  void noteListChanged() { m_listStale = true; }
  /// One action was entered in the list, or removed from it.
  void noteListed(const OdDbObjectId& action, bool listed);
  void noteChanged(Index node);
  /// Actions have exchanged their ids: every link is made again.
  void noteSwapped();
  void noteStatusChanged(Index node);
  /// The object leaves memory.
  void forget(Index node);

  /// Brings nodes, names and links up to date with the objects. Costs nothing when nothing was
  /// noted.
  void settle();
  /// The same for the marks, which are derived from stored statuses (law 3).
  void settleMarks();

  // Queries; the graph is settled, and its marks where statuses are asked for.
  [[nodiscard]] Index nodeNamed(const OdString& name) const;
  [[nodiscard]] OdDbAssocVariable* variable(Index node) const;
  [[nodiscard]] OdDbObjectId idOf(Index node) const { return OdDbObjectId(m_nodes[node].id); }
  [[nodiscard]] OdDbAssocStatus statusOf(Index node) const;
  [[nodiscard]] bool isAnyOutOfDate() const {
    return m_numDirty > 0 || (m_isRetryDue && !m_broken.empty());
  }
  [[nodiscard]] const Inputs& inputs(Index node) const { return m_nodes[node].inputs; }
  [[nodiscard]] const Outputs& outputs(Index node) const { return m_nodes[node].outputs; }
  /// The dependency behind an output.
  [[nodiscard]] OdDbObjectId dependencyOf(const Output& output) const {
    return OdDbObjectId(m_nodes[output.node].inputs[output.input].dependency);
  }
  [[nodiscard]] double& value(Index node) { return m_values[node]; }
  [[nodiscard]] bool isBroken(Index node) const { return m_nodes[node].has(kBroken); }
  /// The insertion unit of the block that has the network.
  [[nodiscard]] OdDb::UnitsValue presentUnit() const;
  /// What the value of a variable measures; see oddbDimensionOf().
  [[nodiscard]] static OdExpression::Dimension dimensionOfVariable(
      const OdDbAssocVariable& variable);
  /// Why a node cannot be compiled; empty when it can.
  [[nodiscard]] OdString faultOf(Index node);
  [[nodiscard]] std::size_t memoryBytes() const;

  // Edits.
  /// Checks an expression for a variable: names, dimensions, cycles, and the dimensions of what
  /// depends on it. Changes nothing. `error` says what is wrong.
  OdResult define(Index node, const OdString& text, OdDbAssocDefinition& definition,
                  OdString& error);
  /// Puts it in place after the objects; `dependencies` are those of definition.inputs, in order.
  void adopt(Index node, OdDbAssocDefinition&& definition,
             const std::vector<OdDbIdRecord*>& dependencies);
  /// The value was set, with the expression as it is.
  void valueEdited(Index node, bool isSame);
  /// Around a change of a variable's name.
  void nameLeaves(Index node) { dropName(node); }
  void nameComes(Index node) { putName(node); }
  /// The text mentions the same variables under other names.
  void textChanged(Index node) { m_nodes[node].clear(kCompiled); }

  // Evaluation. Out-of-date nodes outside the scope keep waiting.
  OdResult evaluateAll(OdDbAssocEvaluationCallback* callback, OdDbAssocScope scope);
  OdResult evaluateNode(Index node, OdDbAssocEvaluationCallback* callback);
  /// What depends on the node, the node included.
  OdResult evaluateFrom(Index node, OdDbAssocEvaluationCallback* callback, OdDbAssocScope scope);

 private:
  enum Flags : OdUInt16 {
    kVariable = 1u << 0,
    kAlive = 1u << 1,      ///< listed and not erased
    kFormula = 1u << 2,    ///< it has an expression
    kCompiled = 1u << 3,   ///< the program is that of the expression
    kBroken = 1u << 4,     ///< law 2
    kFailed = 1u << 5,     ///< its stored status is kAssocFailedToEvaluate
    kDirty = 1u << 6,      ///< marked: it, or something upstream, waits for evaluation
    kNeedsEval = 1u << 7,  ///< it has a reason of its own
    kQueued = 1u << 8,
    kHasName = 1u << 9,  ///< its name is in the index
    kStored = 1u << 10,  ///< its stored status is not kAssocUpToDate
    kPlain = 1u << 11,   ///< a variable of no derived class
  };
  /// What walks read comes first: a large network does not fit into the processor's caches.
  struct Node {
    Outputs outputs;
    OdUInt32 order = 0;
    OdUInt32 visit = 0;  ///< the last walk that was here
    OdUInt16 flags = 0;
    OdDbAssocAction* action = nullptr;  ///< null for a place that is free
    OdDbIdRecord* id = nullptr;
    OdExpression::Program program;
    Inputs inputs;

    [[nodiscard]] bool has(unsigned mask) const { return (flags & mask) != 0; }
    void set(unsigned mask) { flags = static_cast<OdUInt16>(flags | mask); }
    void clear(unsigned mask) { flags = static_cast<OdUInt16>(flags & ~mask); }
  };
  /// What one pass does, phase after phase.
  struct Pass {
    explicit Pass(OdDbAssocGraph& graph, OdDbAssocEvaluationCallback* reportedTo = nullptr);

    OdDbAssocEvaluationCallback* const callback;
    const bool isDrawingHeard;             ///< the drawing has reactors
    std::vector<OdDbValueRecord> changed;  ///< as they were
    std::vector<OdDbObjectId> told;        ///< variables whose reactors the pass calls
    std::vector<OdDbObjectId> actions;     ///< that are no variables, in order
    std::vector<Index> evaluated;          ///< for the callback
  };
  class Scope;

  // Nodes and links (network_graph.cpp).
  void syncList();
  static OdSmartPtr<OdDbAssocAction> openListed(const OdDbObjectId& id);
  void makeRoom();
  Index nodeOf(OdDbAssocAction* action);
  Index attach(OdDbAssocAction* action);
  void detach(Index node);
  void relinkQueued();
  void enqueue(Index node);
  void link(Index node, bool keepsOrder);
  void addEdge(Index from, Index to, OdDbIdRecord* dependency);
  void unlinkInputs(Index node);
  [[nodiscard]] bool keepsName(Index node) const;
  void putName(Index node);
  void dropName(Index node);
  void breakNode(Index node);
  [[nodiscard]] bool hasItsNames(Index node) const;
  void mirrorStatus(Index node);
  OdDbAssocVariable* asVariable(const OdDbObjectId& id, Index& node) const;
  static void followNames(OdDbAssocVariable* variable,
                          const std::vector<std::pair<OdString, OdString>>& names);

  // Order (graph_order.cpp).
  [[nodiscard]] bool orderEdge(Index from, Index to, std::vector<Index>* cycle = nullptr);
  void renumber();
  OdUInt32 nextVisit();

  // Expressions (graph_definition.cpp).
  void checkUnits();
  void compileNeeded(Index node);
  bool compileNode(Index node);
  [[nodiscard]] OdExpression::Dimension dimensionOf(Index node) const;
  OdResult recompileDependents(Index node, OdDbAssocDefinition& definition, OdString& error);
  [[nodiscard]] OdString cycleText(Index node, const std::vector<Index>& cycle) const;
  [[nodiscard]] bool hasBadInput(const Node& node) const;
  void retryBroken();

  // Marks and passes (graph_evaluation.cpp).
  void mark(Index node);
  void deriveMarks();
  void clean(Index node);
  [[nodiscard]] bool isOfScope(Index node, OdDbAssocScope scope) const;
  void storeStatus(Index node, OdDbAssocStatus status, Pass& pass);
  void compute(Index node, Pass& pass);
  void record(const Pass& pass);
  void finish(Pass& pass);
  void fetchAhead() const;
  OdResult evaluateNodes(const std::vector<Index>& roots, OdDbAssocEvaluationCallback* callback);
  OdResult prepare();

  OdDbAssocNetwork* const m_network;
  std::vector<Node> m_nodes;
  std::vector<double> m_values;  ///< law 4; parallel to the nodes
  std::vector<Index> m_free;
  std::unordered_map<OdString, Index> m_names;  ///< by folded name
  std::vector<Index> m_queue;                   ///< to be linked anew
  std::vector<Index> m_broken;                  ///< may hold some that are whole again
  std::vector<Index> m_reasons;  ///< nodes whose stored status says that they wait; may hold others
  std::vector<Index> m_dirty;    ///< marked ones, what is downstream first; may hold clean ones
  std::size_t m_numDirty = 0;
  std::size_t m_numBad = 0;  ///< broken or failed nodes
  OdUInt32 m_nextOrder = 0;
  OdUInt32 m_visit = 0;
  bool m_listStale = true;
  bool m_marksStale = false;
  bool m_isSettling = false;
  bool m_isRetryDue = false;  ///< broken expressions may link, since something was changed
  bool m_hasDoubleNames = false;
};
