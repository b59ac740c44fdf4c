// Nodal analysis of a linear network: currents into every node sum to zero, solved for the node voltages.
#pragma once

#include <cmath>
#include <complex>
#include <utility>
#include <vector>

class NodalAnalysis {
public:
    using Complex = std::complex<long double>;

    // Nodes are 1 to count; 0 is ground.
    explicit NodalAnalysis(int count)
        : count_(count), admittance_(count, std::vector<Complex>(count)), current_(count) {}

    void addAdmittance(int from, int to, Complex admittance) {
        for (const int node : {from, to})
            if (node > 0) admittance_[node - 1][node - 1] += admittance;
        if (from > 0 && to > 0) {
            admittance_[from - 1][to - 1] -= admittance;
            admittance_[to - 1][from - 1] -= admittance;
        }
    }
    void addResistor(int from, int to, long double ohms) { addAdmittance(from, to, 1.0L / ohms); }
    void addCapacitor(int from, int to, long double farads, Complex s) {
        addAdmittance(from, to, s * farads);
    }
    // A voltage source of one volt behind a resistance.
    void addSource(int node, long double ohms) {
        addResistor(node, 0, ohms);
        current_[node - 1] += 1.0L / ohms;
    }

    // Gaussian elimination with pivoting.
    Complex voltage(int node) const {
        auto a = admittance_;
        auto x = current_;
        for (int column = 0; column < count_; ++column) {
            int pivot = column;
            for (int row = column + 1; row < count_; ++row)
                if (std::abs(a[row][column]) > std::abs(a[pivot][column])) pivot = row;
            std::swap(a[column], a[pivot]);
            std::swap(x[column], x[pivot]);
            for (int row = 0; row < count_; ++row) {
                if (row == column) continue;
                const Complex factor = a[row][column] / a[column][column];
                for (int k = column; k < count_; ++k)
                    a[row][k] -= factor * a[column][k];
                x[row] -= factor * x[column];
            }
        }
        return x[node - 1] / a[node - 1][node - 1];
    }

private:
    int count_;
    std::vector<std::vector<Complex>> admittance_;
    std::vector<Complex> current_;
};
