SELECT "customer country".country_name, sum(sales.amount) AS amount
FROM sales
JOIN customer ON sales.customer_key = customer.customer_key
JOIN city AS "customer city" ON customer.city_key = "customer city".city_key
JOIN region AS "customer region" ON "customer city".region_key = "customer region".region_key
JOIN country AS "customer country" ON "customer region".country_key = "customer country".country_key
GROUP BY "customer country".country_name
ORDER BY "customer country".country_name;
