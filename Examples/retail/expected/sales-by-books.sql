SELECT "cost center country".country_name, sum(sales.amount) AS amount
FROM sales
JOIN store ON sales.store_key = store.store_key
JOIN cost_center ON store.cost_center_key = cost_center.cost_center_key
JOIN country AS "cost center country" ON cost_center.country_key = "cost center country".country_key
GROUP BY "cost center country".country_name
ORDER BY "cost center country".country_name;
