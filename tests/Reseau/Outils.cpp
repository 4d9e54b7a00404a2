#include "Outils.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <span>
#include <sstream>
#include <stdexcept>

namespace essai {

std::string Net::texte(long long facteur) const {
    std::ostringstream out;
    out << "net essai\n";
    const auto cote = [&](const std::vector<int>& poids, std::size_t t) {
        for (std::size_t p = 0; p < poids.size(); ++p) {
            if (poids[p] * facteur == 1 && (p + t) % 2 == 0)
                out << " p" << p;
            else if (poids[p] > 0 || (nuls && (p + t) % 3 == 0))
                out << " p" << p << '*' << poids[p] * facteur;
        }
    };
    for (std::size_t t = 0; t < transitions.size(); ++t) {
        out << "tr t" << t;
        cote(transitions[t].pre, t);
        out << " ->";
        cote(transitions[t].post, t);
        out << '\n';
    }
    for (std::size_t p = 0; p < initial.size(); ++p) out << "pl p" << p << " (" << initial[p] * facteur << ")\n";
    return out.str();
}

Net netAuHasard(Hasard& h) {
    Net net;
    net.nuls = tirer(h, 2) == 0;
    net.places = 1 + tirer(h, 5);
    const auto n = static_cast<std::size_t>(net.places);
    for (std::size_t p = 0; p < n; ++p) net.initial.push_back(tirer(h, 3) == 0 ? tirer(h, 4) : tirer(h, 2));
    const int arcs = 1 + tirer(h, 3);
    const int plusLourd = 1 + tirer(h, 3);
    // Half of the nets put no more tokens than they take, or they would hardly ever be bounded.
    const bool econome = tirer(h, 2) == 0;
    for (int t = tirer(h, 7); t > 0; --t) {
        Net::Transition tr{std::vector<int>(n, 0), std::vector<int>(n, 0)};
        int pris = 0;
        for (int a = tirer(h, arcs + 1); a > 0; --a) {
            const int poids = tirer(h, 3) == 0 ? 1 + tirer(h, plusLourd) : 1;
            tr.pre[static_cast<std::size_t>(tirer(h, net.places))] += poids;
            pris += poids;
        }
        if (pris > 0 && tirer(h, 4) == 0) {
            ++tr.post[static_cast<std::size_t>(std::ranges::max_element(tr.pre) - tr.pre.begin())];
            --pris;
        }
        for (int a = tirer(h, arcs + 1); a > 0; --a) {
            const int poids = tirer(h, 3) == 0 ? 1 + tirer(h, plusLourd) : 1;
            if (econome && poids > pris) break;
            pris -= poids;
            tr.post[static_cast<std::size_t>(tirer(h, net.places))] += poids;
        }
        net.transitions.push_back(std::move(tr));
    }
    return net;
}

Net netRedondantAuHasard(Hasard& h) {
    Net net = netAuHasard(h);
    for (int n = 1 + tirer(h, 3); n > 0; --n) {
        const auto modele = static_cast<std::size_t>(tirer(h, net.places));
        const int facteur = 1 + tirer(h, 3);
        const int besoins = tirer(h, 3);  // of one transition in so many
        net.initial.push_back(tirer(h, 5));
        ++net.places;
        for (Net::Transition& t : net.transitions) {
            const int change = (t.post[modele] - t.pre[modele]) * facteur;
            t.pre.push_back(std::max(0, -change) + (besoins > 0 && tirer(h, besoins) == 0 ? tirer(h, 4) : 0));
            t.post.push_back(t.pre.back() + change);
        }
    }
    for (int n = tirer(h, 3); n > 0 && !net.transitions.empty(); --n) {
        Net::Transition t = net.transitions[h() % net.transitions.size()];
        for (std::size_t p = 0; p < t.pre.size(); ++p) {
            const int plus = tirer(h, 3) == 0 ? 1 + tirer(h, 2) : 0;
            t.pre[p] += plus;
            t.post[p] = std::max(0, t.post[p] + tirer(h, plus + 1) - (tirer(h, 4) == 0 ? 1 : 0));
        }
        net.transitions.insert(net.transitions.begin() + tirer(h, static_cast<int>(net.transitions.size()) + 1), t);
    }
    return net;
}

Net netDeReseauAuHasard(Hasard& h) {
    const int noeuds = 1 + tirer(h, 3);
    const int molecules = 1 + tirer(h, 3);
    Net net;
    net.nuls = tirer(h, 2) == 0;
    net.places = 1 + noeuds + molecules;
    const auto n = static_cast<std::size_t>(net.places);
    net.initial.assign(n, 0);
    net.initial[0] = 1;
    const auto multiset = [&](std::vector<int>& v, int plus) {
        for (int k = tirer(h, plus + 1); k > 0; --k)
            v[static_cast<std::size_t>(1 + noeuds + tirer(h, molecules))] += 1 + tirer(h, 2);
    };
    for (int arc = tirer(h, 2 * noeuds + 2); arc > 0; --arc) {
        Net::Transition t{std::vector<int>(n, 0), std::vector<int>(n, 0)};
        t.pre[static_cast<std::size_t>(1 + tirer(h, noeuds))] = 1;
        t.post[static_cast<std::size_t>(1 + tirer(h, noeuds))] = 1;
        multiset(t.pre, 2);
        multiset(t.post, 1 + tirer(h, 2));
        net.transitions.push_back(std::move(t));
    }
    for (int initial = 1 + tirer(h, 2); initial > 0; --initial) {
        Net::Transition t{std::vector<int>(n, 0), std::vector<int>(n, 0)};
        t.pre[0] = 1;
        t.post[static_cast<std::size_t>(1 + tirer(h, noeuds))] = 1;
        multiset(t.post, 3);
        net.transitions.push_back(std::move(t));
    }
    return net;
}

namespace {

inline bool couvre(std::span<const int> a, std::span<const int> b) {
    return std::equal(a.begin(), a.end(), b.begin(), std::greater_equal());
}

/// Markings none of which covers another one, one behind the other.
class Minimaux {
public:
    explicit Minimaux(std::size_t places) : places_(places) {}

    std::size_t taille() const { return comptes_.size() / places_; }
    /// Adds a marking and drops those that cover it, unless it covers one itself.
    /// @return whether it is added
    bool ajouter(std::span<const int> m) {
        const std::size_t nombre = taille();
        for (std::size_t i = 0; i < nombre; ++i) {
            if (!couvre(m, en(i))) continue;
            if (i > 0) std::ranges::swap_ranges(en(i / 2), en(i));  // it is likely to be asked for again
            return false;
        }
        std::size_t restent = 0;
        for (std::size_t i = 0; i < nombre; ++i)
            if (!couvre(en(i), m)) {
                if (restent < i) std::ranges::copy(en(i), en(restent).begin());
                ++restent;
            }
        comptes_.resize(restent * places_);
        comptes_.insert(comptes_.end(), m.begin(), m.end());
        return true;
    }

private:
    std::span<int> en(std::size_t i) { return {&comptes_[i * places_], places_}; }

    std::size_t places_;
    std::vector<int> comptes_;
};

}  // namespace

std::optional<std::vector<int>> maximaParRecherche(const Net& net, std::size_t limite) {
    std::set<std::vector<int>> vus{net.initial};
    std::vector<std::vector<int>> aVoir{net.initial};
    std::vector<int> maxima = net.initial;
    while (!aVoir.empty()) {
        const std::vector<int> m = std::move(aVoir.back());
        aVoir.pop_back();
        for (const Net::Transition& t : net.transitions) {
            if (!couvre(m, t.pre)) continue;
            std::vector<int> suivant = m;
            for (std::size_t p = 0; p < m.size(); ++p) {
                suivant[p] += t.post[p] - t.pre[p];
                maxima[p] = std::max(maxima[p], suivant[p]);
            }
            if (!vus.insert(suivant).second) continue;
            if (vus.size() > limite) return std::nullopt;
            aVoir.push_back(std::move(suivant));
        }
    }
    return maxima;
}

std::optional<bool> couvrable(const Net& net, const std::vector<int>& but, std::size_t limite) {
    Minimaux base(but.size());  // from which the goal can be reached
    base.ajouter(but);
    std::vector<std::vector<int>> aVoir{but};
    std::vector<int> avant(but.size());
    while (!aVoir.empty()) {
        const std::vector<int> m = std::move(aVoir.back());
        aVoir.pop_back();
        if (couvre(net.initial, m)) return true;
        for (const Net::Transition& t : net.transitions) {
            for (std::size_t p = 0; p < m.size(); ++p) avant[p] = t.pre[p] + std::max(0, m[p] - t.post[p]);
            if (!base.ajouter(avant)) continue;
            aVoir.push_back(avant);
            if (base.taille() > limite) return std::nullopt;
        }
    }
    return false;
}

std::optional<bool> atteint(const Net& net, int place, int compte, std::size_t limite) {
    std::vector<int> but(static_cast<std::size_t>(net.places), 0);
    but[static_cast<std::size_t>(place)] = compte;
    return couvrable(net, but, limite);
}

namespace {

std::string contenu(const std::filesystem::path& fichier) {
    std::ifstream in(fichier, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

Resultat lancer(const std::string& arguments, const std::string& entree, const std::string& avant) {
    std::string modele = (std::filesystem::temp_directory_path() / "reseau-XXXXXX").string();
    if (mkdtemp(modele.data()) == nullptr) throw std::runtime_error("no temporary directory");
    const std::filesystem::path dossier = modele;
    std::ofstream(dossier / "entree", std::ios::binary) << entree;
    const std::string commande =
        "cd '" + modele + "' && { " + avant + "'" TINA "' " + arguments + "; } <entree >sortie 2>erreurs";
    const int etat = std::system(commande.c_str());
    Resultat r{WIFEXITED(etat) ? WEXITSTATUS(etat) : -1, contenu(dossier / "sortie"), contenu(dossier / "erreurs")};
    std::filesystem::remove_all(dossier);
    return r;
}

}  // namespace essai
