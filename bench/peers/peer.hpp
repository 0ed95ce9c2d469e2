// The tree of the textbook parser: a node of its own for each token and each reduction, as one would write it at first.
#pragma once

#include <string>
#include <utility>
#include <vector>

struct Node {
  template <class... Children>
  explicit Node(int ruleNumber, Children... nodes) : rule(ruleNumber), children{nodes...} {}
  Node(int token, std::string tokenText, int tokenLine) : rule(-token), line(tokenLine), text(std::move(tokenText)) {}
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  ~Node() {
    for (const Node* child : children) delete child;
  }

  int rule;
  int line = 0;
  std::string text;
  std::vector<Node*> children;
};

extern Node* root;
