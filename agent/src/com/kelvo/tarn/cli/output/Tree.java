package com.kelvo.tarn.cli.output;

import java.util.ArrayList;
import java.util.List;

/** A tree for people: a line per node, the branches drawn before it. */
public final class Tree {
    private final String label;
    private final List<Tree> children = new ArrayList<>();

    public Tree(String label) {
        this.label = label;
    }

    public void add(Tree child) {
        children.add(child);
    }

    public void print(Page out) {
        print(out, "", "");
    }

    private void print(Page out, String branch, String margin) {
        out.printFolded(branch, margin + (children.isEmpty() ? "  " : "│ "), label);
        for (Tree child : children) {
            boolean last = child == children.get(children.size() - 1);
            child.print(out, margin + (last ? "└─ " : "├─ "), margin + (last ? "   " : "│  "));
        }
    }
}
